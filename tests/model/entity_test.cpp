#include "common/model/data_handle_provider.h"
#include "common/model/entity_handle.h"
#include "common/values/quantity.h"
#include "common/writer/writer_message.h"
#include "common/writer/writer_plugin.h"
#include "common/writer/writer_stream_host.h"
#include "tests/support/log_capture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

namespace pwr {

// The public interface can make no cycle, since a new entity has no descendants.
class EntityHandleTestAccess {
public:
    static int addChild(const EntityHandle* parent, EntityHandle* child) { return parent->addChild(child); }
};

} // namespace pwr

using namespace pwr;

namespace {

// Keeps the qualified name of each handle as it was when it was announced.
class NameKeeper : public WriterPlugin {
public:
    NameKeeper() : WriterPlugin("names") {}
    const char* getDescription() const override { return "keeps the announced names"; }
    int flushResults() override { return 0; }

    std::vector<std::vector<std::string>> announcements;

private:
    int writeMessage(const IdMessage& message) override {
        std::vector<std::string> names;
        for (const UniqueId* id : message) {
            const DataHandle* handle = nullptr;
            const bool isHandle = id->getIdType() == UniqueIdType::DATA_HANDLE;
            names.push_back(isHandle && DataHandle::get(id->getId(), handle) == 0 ? handle->getQualifiedName()
                                                                                  : "?");
        }
        announcements.push_back(names);
        return 0;
    }
};

TEST(EntityTest, isNamedByItsWayDown) {
    const EntityHandle* const top = EntityHandle::create("top", "t", nullptr);
    const EntityHandle* const middle = EntityHandle::create("middle", top);
    const EntityHandle* const unnamed = EntityHandle::create("", middle);
    const EntityHandle* const leaf = EntityHandle::create(Description("leaf", ""), unnamed);
    EXPECT_EQ("top", top->getQualifiedName());
    EXPECT_EQ("top/middle", middle->getQualifiedName());
    EXPECT_EQ("leaf", leaf->getQualifiedName()) << "an ancestor without name ends the walk";
    EXPECT_EQ("t", top->getShortName());
    EXPECT_EQ("middle", middle->getShortName());

    LogCapture log;
    EXPECT_EQ("", EntityHandle::getQualifiedName(nullptr));
    EXPECT_EQ("top/middle", EntityHandle::getQualifiedName(middle));
    EXPECT_EQ("WARNING: Unique failed to retrieve entity\n", log.text());
}

TEST(EntityTest, refusesToStandBelowItself) {
    EntityHandle* const top = EntityHandle::create("top", nullptr);
    EntityHandle* const child = EntityHandle::create("child", top);
    LogCapture log;
    EXPECT_EQ(1, EntityHandleTestAccess::addChild(child, top));
    EXPECT_EQ(1, EntityHandleTestAccess::addChild(top, top));
    EXPECT_EQ("WARNING: Could not add relationship because cycle detected\n"
              "WARNING: Could not add relationship because cycle detected\n",
              log.text());
    EXPECT_EQ(nullptr, top->getParent());
    EXPECT_EQ(std::vector<const EntityHandle*>{child}, top->getChildren());
    EXPECT_TRUE(child->getChildren().empty());

    EntityHandle* const other = EntityHandle::create("other", nullptr);
    EXPECT_EQ(0, EntityHandleTestAccess::addChild(top, other));
    EXPECT_EQ((std::vector<const EntityHandle*>{child, other}), top->getChildren());
    EXPECT_EQ(top, other->getParent());
}

TEST(ProviderTest, announcesWhatWasThereAndWhatComes) {
    const EntityHandle* const early = EntityHandle::create("early", nullptr);
    NameKeeper names;
    std::set<WriterPlugin*> writers{&names};
    WriterStream* const stream = WriterStreamHost::create(writers);
    EXPECT_EQ(1, DataHandleProvider::addStream(nullptr));
    EntityHandle::create("before", early);
    ASSERT_EQ(0, DataHandleProvider::addStream(stream));
    ASSERT_EQ(1U, names.announcements.size()) << "one message for all that was registered before";
    const std::vector<std::string>& known = names.announcements[0];
    EXPECT_EQ("early/before", known.back());
    EXPECT_EQ(1, std::count(known.begin(), known.end(), "early"));
    names.announcements.clear();

    EXPECT_EQ(1, DataHandleProvider::addStream(nullptr)); // and keeps the stream it has
    EntityHandle::create("late", early);
    Quantity::create(QuantityType::CUSTOM, "q", "", nullptr, 1.0);
    EXPECT_EQ((std::vector<std::vector<std::string>>{{"early/late"}, {"?"}}), names.announcements);

    EXPECT_EQ(0, DataHandleProvider::removeStream(stream));
    EXPECT_EQ(1, DataHandleProvider::removeStream(stream));
    EntityHandle::create("unheard", nullptr);
    EXPECT_EQ(2U, names.announcements.size());
    WriterStreamHost::destroy(stream);
}

} // namespace
