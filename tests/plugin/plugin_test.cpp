#include "common/plugin/collection_data.h"
#include "common/plugin/collector_plugin.h"
#include "common/plugin/plugin.h"
#include "common/pw_utils.h"
#include "tests/support/log_capture.h"

#include <array>
#include <gmock/gmock.h>
#include <memory>

namespace pwr {
namespace {

class PlainPlugin : public Plugin {
public:
    PlainPlugin() : Plugin("plain") {}
    const char* getDescription() const override { return "a plug-in of nothing"; }
};

TEST(Plugin, takesEachCapabilityOnce) {
    PlainPlugin plugin;
    auto cpu = std::make_unique<PluginCapability>("cpu", "processor time");
    auto again = std::make_unique<PluginCapability>("cpu", "something else");
    ASSERT_EQ(0, plugin.addCapability(cpu.get()));
    const PluginCapability* const taken = cpu.release();
    EXPECT_EQ(1, plugin.addCapability(again.get()));
    EXPECT_EQ(1, plugin.addCapability(nullptr));
    EXPECT_THAT(plugin.getCapabilities(), testing::ElementsAre(taken));
    EXPECT_EQ(1, plugin.setOption("unknown", "value"));
}

class PlainCollector : public CollectorPlugin {
public:
    PlainCollector() : CollectorPlugin("plain") {}
    const char* getDescription() const override { return "a collector of nothing"; }
    std::vector<std::string> getCollectorTypes() const override { return {}; }
    int open(const MsgMetadata& /*message*/, MessageInstances& /*out*/) override { return 0; }
    int read(const MsgMetadata& /*message*/, CollectionData& /*out*/) override { return 0; }
};

TEST(CollectorPlugin, refusesImmediateWork) {
    LogCapture log;
    PlainCollector collector;
    Operation* const operation = nullptr;
    const InputMsg* const message = nullptr;
    EXPECT_EQ(-1, collector.doImmediateRead(operation, "argument"));
    EXPECT_EQ(-1, collector.doImmediateRead(message, {{"name", "value"}}));
    const std::string read = "WARNING: collector plain offers no immediate read!\n";
    EXPECT_EQ(read + read, log.take());
    EXPECT_EQ(-1, collector.doImmediateWrite(operation, "argument"));
    EXPECT_EQ(-1, collector.doImmediateWrite(message));
    EXPECT_THAT(log.take(), testing::HasSubstr("immediate write"));
}

TEST(PluginRequirement, saysWhatIsMissing) {
    struct Case {
        PluginRequirement::Kind kind;
        std::string subject;
        std::string reason; // empty: it is met
    };
    using Kind = PluginRequirement::Kind;
    const std::string here = tw_temp_directory_path();
    for (const Case& c :
         {Case{Kind::READABLE_FILE, here, ""}, Case{Kind::DEVICE, here, ""},
          Case{Kind::READABLE_FILE, here + "/none", "file " + here + "/none cannot be read"},
          Case{Kind::DEVICE, here + "/none", "device " + here + "/none is not there"},
          Case{Kind::PRIVILEGE, "no-such-privilege", "privilege no-such-privilege is not held"},
          Case{Kind::MODULE, "no-such-module", "system module no-such-module is not loaded"}}) {
        std::string reason;
        EXPECT_EQ(c.reason.empty(), PluginRequirement(c.kind, c.subject, "none").isMet(reason)) << c.subject;
        EXPECT_EQ(c.reason, reason);
    }
}

TEST(CollectionData, tellsMissingFromZeroAndText) {
    CollectionData data;
    data.add(0);
    data.addMissing();
    data.addText("idle");
    data.addText("");
    EXPECT_EQ(4, data.header().count);
    EXPECT_EQ(tw_driver_msg_flag::TEXT, data.header().flags);
    EXPECT_TRUE(data.isPresent(0));
    EXPECT_FALSE(data.isPresent(1));
    EXPECT_FALSE(data.isPresent(4));
    EXPECT_EQ("idle", data.getText(2));
    EXPECT_TRUE(data.isText(3));
    EXPECT_EQ("", data.getText(0));
    EXPECT_EQ(0U, data.getBits(2)); // the place of the text is nobody's business

    const CollectionData moved = std::move(data);
    EXPECT_EQ("idle", moved.getText(2));
}

TEST(CollectionData, clearedIsAsNew) {
    CollectionData data;
    data.header().timestamp = 7;
    data.addText("before");
    data.clear();
    EXPECT_EQ(0U, data.size());
    EXPECT_EQ(0U, data.header().timestamp);
    EXPECT_EQ(0, data.header().flags);
    data.addText("after");
    EXPECT_EQ("after", data.getText(0));
}

TEST(CollectionData, takesAsManyAsTheHeaderCounts) {
    LogCapture log;
    CollectionData data;
    const std::vector<std::uint64_t> most(CollectionData::MAX_VALUES - 1, 5);
    EXPECT_EQ(0, data.addAll(most));
    EXPECT_EQ(1, data.addAll(std::array<std::uint64_t, 2>{1, 2}));
    EXPECT_EQ(0, data.add(6));
    EXPECT_EQ(1, data.addText("too much"));
    EXPECT_EQ(0xFFFF, data.header().count);
    EXPECT_EQ(6U, data.getBits(0xFFFE));
    EXPECT_EQ(0, data.header().flags);
    EXPECT_NE("", log.text());
}

} // namespace
} // namespace pwr
