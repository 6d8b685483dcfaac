#include "common/model/attribute.h"
#include "common/model/data_descriptor.h"
#include "common/model/data_handle_provider.h"
#include "common/model/entity_handle.h"
#include "common/model/event.h"
#include "common/model/field.h"
#include "common/model/process.h"
#include "common/model/state.h"
#include "common/model/thread.h"
#include "common/values/quantity.h"
#include "tests/support/log_capture.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace pwr;

namespace {

// Made before any test: neither loading the library nor starting the program may have taken an id.
const std::uint64_t g_firstId = EntityHandle::create("first", nullptr)->getId();

TEST(UniqueIdTest, countsFromZeroOverAllKinds) {
    EXPECT_EQ(0U, g_firstId);
    const std::uint64_t first = EntityHandle::create("a", nullptr)->getId();
    EXPECT_EQ(first + 1, Field::create(FieldDescription("b"))->getId());
    EXPECT_EQ(first + 2, Quantity::create(QuantityType::CUSTOM, "c", "", nullptr, 1.0)->getId());
    EXPECT_EQ(first + 3, State::create(StateDescription("d"))->getId());
    EXPECT_EQ(first + 4, DataDescriptorBuilder("e").build()->getId());
}

TEST(DescriptionTest, takesTheNameForWhatIsMissing) {
    const Description full("name", "n");
    EXPECT_EQ("n", full.getShortName());
    const Description bare("name", "");
    EXPECT_EQ("name", bare.getShortName());
    EXPECT_EQ("name", bare.getFieldName());
    EXPECT_EQ("", bare.getDescription() + bare.getHeader());
    EXPECT_EQ(DescriptionType::PLAIN, bare.getType());
}

TEST(DataHandleTest, copiesTheTextsOfItsDescription) {
    EventDescription description("wake", "w");
    description.setFieldName("");
    description.setDescription("long");
    description.setHeader("head");
    const Event* const event = Event::create(description);
    description.setFieldName("later");
    EXPECT_EQ("wake|w||long|head", event->getName() + "|" + event->getShortName() + "|" +
                                       event->getFieldName() + "|" + event->getDescription() + "|" +
                                       event->getHeader());
    EXPECT_EQ("wake", event->getQualifiedName());
}

TEST(DataHandleTest, resolvesEachKindByItsId) {
    const Process* const process = Process::create(42, "shell");
    const Thread* const thread = Thread::create(7, process, "main");
    struct Case {
        const DataHandle* handle;
        unsigned type;
    };
    for (const Case& expected :
         {Case{Attribute::create(AttributeDescription("a", "", DataType::INT)), 0},
          Case{Field::create(FieldDescription("f")), 1}, Case{State::create(StateDescription("s")), 2},
          Case{Event::create(Description("e", "")), 6}, Case{EntityHandle::create("n", nullptr), 7},
          Case{DataDescriptorBuilder("d").build(), 9}, Case{process, 10}, Case{thread, 11}}) {
        SCOPED_TRACE(expected.handle->getName());
        EXPECT_EQ(expected.type, static_cast<unsigned>(expected.handle->getHandleType()));
        const DataHandle* found = nullptr;
        EXPECT_EQ(0, DataHandle::get(expected.handle->getId(), found));
        EXPECT_EQ(expected.handle, found);
    }
    EXPECT_EQ(42U, thread->getProcess()->getProcessId());
    EXPECT_EQ(7U, thread->getThreadId());
}

TEST(DataHandleTest, refusesIdsThatAreNoHandles) {
    LogCapture log;
    const DataHandle* const before = Event::create(EventDescription("before"));
    const DataHandle* found = before;
    EXPECT_EQ(1, DataHandle::get(18446744073709551615U, found));
    EXPECT_EQ("WARNING: Handle id 18446744073709551615 not found in UniqueId map\n", log.take());
    EXPECT_EQ(1, DataHandle::get(Quantity::power()->getId(), found));
    EXPECT_EQ("WARNING: UniqueId isn't a DataHandle type\n", log.take());
    EXPECT_EQ(before, found);
}

TEST(DataDescriptorTest, isSharedByNameOnlyOnRequest) {
    DataDescriptorBuilder builder("C6 (model test)");
    builder.setShortName("C6").setFieldName("state").setDescription("deep").setHeader("states").setValue(
        Data(6));
    const DataDescriptor* const first = builder.build();
    const DataDescriptor* const second = builder.setValue(Data(DataType::INT)).build();
    EXPECT_NE(first, second);
    EXPECT_EQ(first, DataHandleProvider::findDescriptor("C6 (model test)"));
    EXPECT_EQ(nullptr, DataHandleProvider::findDescriptor("C7 (model test)"));
    EXPECT_EQ("C6|state|deep|states", first->getShortName() + "|" + first->getFieldName() + "|" +
                                          first->getDescription() + "|" + first->getHeader());
    ASSERT_NE(nullptr, first->getValue());
    EXPECT_TRUE(*first->getValue() == Data(6));
    EXPECT_EQ(nullptr, second->getValue()) << "an unset value is no value";
}

TEST(AttributeTest, valuesStandInOrderOfTheAttributes) {
    const Attribute* const kind = Attribute::create(AttributeDescription("kind", "", DataType::STRING));
    const Attribute* const size =
        Attribute::create(AttributeDescription("size", "", DataType::UINT, Quantity::data()));
    DynamicAttributeValueManager values;
    EXPECT_EQ(0, values.setAttributeValue(size, Data(std::uint64_t{5})));
    EXPECT_EQ(0, values.setAttributeValue(kind, Data("big")));
    EXPECT_EQ(0, values.setAttributeValue(size, Data(std::uint64_t{6})));
    ASSERT_EQ(2, values.end() - values.begin());
    EXPECT_EQ(kind, values.begin()->first);
    EXPECT_TRUE(*values.getAttributeValue(size) == Data(std::uint64_t{6}));

    LogCapture log;
    EXPECT_EQ(1, values.setAttributeValue(size, Data(-1)));
    EXPECT_EQ(1, values.setAttributeValue(nullptr, Data(1)));
    EXPECT_EQ("WARNING: Attribute size takes values of type 2, not 1\n"
              "WARNING: Cannot set an attribute value without an attribute\n",
              log.text());
    EXPECT_TRUE(*values.getAttributeValue(size) == Data(std::uint64_t{6}));
    values.clear();
    EXPECT_TRUE(values.empty());
    EXPECT_EQ(nullptr, values.getAttributeValue(size));
}

} // namespace
