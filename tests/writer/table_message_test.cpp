#include "common/model/attribute.h"
#include "common/model/field.h"
#include "common/model/state.h"
#include "common/values/formatter.h"
#include "common/values/quantity.h"
#include "tests/support/log_capture.h"
#include "tests/support/table_text.h"

#include <gtest/gtest.h>

#include <iterator>
#include <limits>

using pwr::Data;
using pwr::DataType;
using pwr::EntityHandle;
using pwr::LogCapture;
using pwr::TableMessage;

namespace {

constexpr std::uint64_t noEntity = std::numeric_limits<std::uint64_t>::max();

/// Says that it describes a state, but is no state description.
class OddDescription : public pwr::Description {
public:
    OddDescription() : Description(pwr::DescriptionType::STATE, "odd", "") {}
};

/// Two rows (given in reverse), a shared INT field 0, a per-entity REAL field 1 and STRING field 2.
class TableMessageTest : public ::testing::Test {
protected:
    TableMessageTest() : table("T", pwr::Quantity::frequency()) {
        const pwr::RealFormatter oneDigit(0, 1);
        table.addEntity(b);
        table.addEntity(a);
        table.addEntity(b);
        table.addField("count", DataType::INT, true);
        table.addField("value", DataType::REAL, &oneDigit);
        table.addField("text", DataType::STRING, false);
    }
    std::string logged() { return log.take(); }

    const EntityHandle* a = EntityHandle::create("a", nullptr);
    const EntityHandle* b = EntityHandle::create("b", nullptr);
    const EntityHandle* stranger = EntityHandle::create("stranger", nullptr);
    TableMessage table;
    LogCapture log;
    const Data* out = nullptr;
};

TEST_F(TableMessageTest, shapeIsCountedAndFrozen) {
    EXPECT_EQ(2U, table.getFieldCount());
    EXPECT_EQ(1U, table.getSharedHandleCount());
    EXPECT_EQ((std::vector<const EntityHandle*>{a, b}),
              std::vector<const EntityHandle*>(table.entityBegin(), table.entityEnd()));
    EXPECT_EQ(1, table.resetData());
    EXPECT_EQ("WARNING: Can't reset table data before table is created\n", logged());
    EXPECT_EQ(1, table.addEntity(nullptr));
    ASSERT_EQ(0, table.createTable());
    EXPECT_EQ(1, table.createTable());
    EXPECT_EQ("", logged());
    EXPECT_EQ(1, table.addEntity(stranger));
    EXPECT_EQ("WARNING: Can't add new EntityHandle to table after table is created\n", logged());
    EXPECT_EQ(1, table.addField("late", DataType::INT, false));
    EXPECT_EQ("WARNING: May not add field once table T is created\n", logged());
    EXPECT_EQ(2U, table.getEntityCount());
    EXPECT_EQ(nullptr, table.getFieldHandle(3));
}

TEST_F(TableMessageTest, aFieldGivenTwiceKeepsItsNumberAndStatesNeedTheirDescription) {
    const pwr::Field* field = pwr::Field::create(pwr::FieldDescription("f", "", DataType::UINT));
    EXPECT_EQ(0, table.addField(field, false));
    EXPECT_EQ(0, table.addField(field, nullptr, true));
    unsigned number = 0;
    EXPECT_TRUE(table.findFieldNumber(field, number));
    EXPECT_EQ(3U, number);
    EXPECT_EQ(DataType::UINT, table.getFieldType(3));
    EXPECT_FALSE(table.isSharedField(3));
    EXPECT_EQ(1, table.addField(OddDescription(), DataType::REAL, false));
    EXPECT_EQ("WARNING: Could not get state description\n", logged());
    EXPECT_EQ(0, table.addField(pwr::StateDescription("C1"), DataType::REAL, false));
    EXPECT_EQ(pwr::DataHandleType::STATE, table.getFieldHandle(4)->getHandleType());
}

TEST_F(TableMessageTest, everyWrongAccessHasItsText) {
    const pwr::DataHandle* count = table.getFieldHandle(0);
    const pwr::DataHandle* value = table.getFieldHandle(1);
    EXPECT_EQ(1, table.setFieldValue(count, Data(std::int64_t{1})));
    EXPECT_EQ("WARNING: Can't set table field before table is created\n", logged());
    EXPECT_EQ(1, table.getFieldValue(stranger, count, out));
    EXPECT_EQ("WARNING: Attempt to retrieve value from uncreated table T", logged());
    table.createTable();

    struct Case {
        const char* name;
        const EntityHandle* entity;
        const pwr::DataHandle* field;
        const char* reading;
        const char* writing;
    };
    for (const Case& c : {Case{"unknown field", a, stranger, "Unknown field stranger in table T\n", nullptr},
                          Case{"entity for a shared field", a, count,
                               "Entity specified in request for field where not relevant T\n", nullptr},
                          Case{"unknown entity", stranger, value, "Entity stranger not found in table T\n",
                               "No such entity stranger found in table T\n"},
                          Case{"no entity", nullptr, value, "Entity (none) not found in table T\n",
                               "No such entity (none) found in table T\n"}}) {
        EXPECT_EQ(1, table.getFieldValue(c.entity, c.field, out)) << c.name;
        EXPECT_EQ(std::string("WARNING: ") + c.reading, logged()) << c.name;
        EXPECT_EQ(1, table.setFieldValue(c.entity, c.field, Data(1.0))) << c.name;
        EXPECT_EQ(std::string("WARNING: ") + (c.writing ? c.writing : c.reading), logged()) << c.name;
    }
    EXPECT_EQ(1, table.getFieldValueAt(a, 9, out));
    EXPECT_EQ("WARNING: Could not find field 9 in table T\n", logged());
    EXPECT_EQ(1, table.getFieldValue(a, value, out));
    EXPECT_EQ("WARNING: No data in table yet T\n", logged());
    EXPECT_EQ(nullptr, out);
}

TEST_F(TableMessageTest, cellsKeepTypeFormatAndOldValue) {
    table.createTable();
    const pwr::DataHandle* value = table.getFieldHandle(1);
    Data precise(2.25);
    precise.setCustomFormatter(pwr::RealFormatter("W", 0, 4));
    EXPECT_EQ(0, table.setFieldValue(b, value, precise));
    EXPECT_EQ(1, table.setFieldValue(b, value, Data(std::uint64_t{7})));
    EXPECT_EQ("WARNING: Invalid attempt to initialize data of the wrong type (3 != 2)\n", logged());
    EXPECT_EQ(1, table.setFieldValue(a, value, Data(DataType::REAL))) << "an unset value is none";
    std::string text;
    EXPECT_EQ(0, table.getFieldAsString(b, value, text));
    EXPECT_EQ("2.2", text) << "by the field's formatter, not the value's";
    EXPECT_EQ(1, std::distance(table.validBegin(), table.validEnd()));
}

TEST_F(TableMessageTest, filledCellsAreListedInOrderUntilReset) {
    table.createTable();
    using Pair = std::pair<std::uint64_t, std::uint64_t>;
    const auto idOf = [this](unsigned number) { return table.getFieldHandle(number)->getId(); };
    table.setFieldValueAt(nullptr, 0, Data(std::int64_t{1}));
    table.setFieldValueAt(b, 1, Data(1.0));
    table.setFieldValueAt(a, 2, Data(std::string("x")));
    table.setFieldValueAt(a, 1, Data(1.0));
    table.setFieldValueAt(a, 1, Data(2.0));
    const std::vector<Pair> expected{
        {a->getId(), idOf(1)}, {a->getId(), idOf(2)}, {b->getId(), idOf(1)}, {noEntity, idOf(0)}};
    EXPECT_EQ(expected, std::vector<Pair>(table.validBegin(), table.validEnd()));
    EXPECT_EQ(0, table.resetData());
    EXPECT_TRUE(table.validBegin() == table.validEnd());
    EXPECT_EQ(1, table.getFieldValueAt(a, 1, out));
    EXPECT_EQ(0, table.setFieldValueAt(a, 1, Data(3.25)));
    std::string text;
    EXPECT_EQ(0, table.getFieldAsString(a, table.getFieldHandle(1), text));
    EXPECT_EQ("3.2", text) << "shape and formatters outlive a reset";
}

TEST_F(TableMessageTest, rowsAreFoundInAnyOrderOfAddingAndAsking) {
    TableMessage wide("wide", nullptr);
    std::vector<const EntityHandle*> entities;
    entities.reserve(100);
    for (int i = 0; i < 100; ++i) {
        entities.push_back(EntityHandle::create("e", nullptr));
    }
    for (std::size_t i = 0; i < 100; ++i) {
        wide.addEntity(entities[i * 37 % 100]);
    }
    wide.addField("n", DataType::UINT, false);
    wide.createTable();
    for (std::size_t i = 0; i < 100; ++i) {
        ASSERT_EQ(0, wide.setFieldValueAt(entities[i * 63 % 100], 0, Data(std::uint64_t{i * 63 % 100})));
    }
    for (std::size_t row = 0; row < 100; ++row) {
        EXPECT_EQ(Data(std::uint64_t{row}), *wide.findCell(row, 0));
    }
}

TEST_F(TableMessageTest, withoutEntitiesThereIsOneRow) {
    TableMessage single("single", nullptr);
    EXPECT_EQ(1, single.createTable());
    EXPECT_EQ("WARNING: Can't create empty table single\n", logged());
    single.addField("n", DataType::INT, false);
    ASSERT_EQ(0, single.createTable());
    EXPECT_EQ(1U, single.getRowCount());
    EXPECT_EQ(0, single.setFieldValue(single.getFieldHandle(0), Data(std::int64_t{5})));
    EXPECT_EQ(noEntity, single.validBegin()->first);
    EXPECT_EQ(1, single.setFieldValueAt(a, 0, Data(std::int64_t{5})));
}

TEST_F(TableMessageTest, attributesAreReadThroughHandleCells) {
    const auto* kind = pwr::Attribute::create(pwr::AttributeDescription("kind", "", DataType::INT));
    EntityHandle* core = EntityHandle::create("core", nullptr);
    core->setAttributeValue(kind, Data(std::int64_t{4}));
    table.addField("entity", DataType::HANDLE, false);
    table.createTable();
    table.setFieldValueAt(a, 3, Data(*core));
    table.setFieldValueAt(a, 1, Data(1.0));
    EXPECT_EQ(0, table.getFieldAttributeValue(a, table.getFieldHandle(3), kind, out));
    EXPECT_EQ(Data(std::int64_t{4}), *out);
    EXPECT_EQ(1, table.getFieldAttributeValue(a, table.getFieldHandle(1), kind, out));
    EXPECT_EQ("WARNING: Attempt to retrieve an attribute from a simple type in T\n", logged());
    EXPECT_EQ(1, table.getFieldAttributeValue(a, table.getFieldHandle(3), nullptr, out));
    EXPECT_EQ(0U, logged().find("WARNING: Error getting state/event/entity/dataDescriptor and attribute ("));
}

/// All columns of a table at once, as every writer sees them.
TEST_F(TableMessageTest, anyTableIsPrintedFromItsOwnColumns) {
    tests::TableCapture capture;
    const EntityHandle* core = EntityHandle::create("core0", EntityHandle::create("package1", nullptr));
    table.addField("Share (%)", DataType::REAL, false);
    table.addField(
        pwr::Field::create(pwr::FieldDescription("Energy", "", DataType::UINT, pwr::Quantity::energy())),
        false);
    table.addField("of", DataType::HANDLE, false);
    table.createTable();
    table.setFieldValueAt(nullptr, 0, Data(std::int64_t{9}));
    table.setFieldValueAt(a, 1, Data(1.26));
    table.setFieldValueAt(a, 3, Data(50.0));
    table.setFieldValueAt(b, 4, Data(std::uint64_t{3}));
    table.setFieldValueAt(b, 5, Data(*core));
    capture.stream().pushMessage(table);
    EXPECT_EQ("T\n"
              "Entity | count (MHz) | value (MHz) | text | Share (%) | Energy (mJ) | of\n"
              "a | 9 | 1.3 | <N/A> | 50.00 | <N/A> | <N/A>\n"
              "b | 9 | <N/A> | <N/A> | <N/A> | 3 | package1/core0\n\n",
              capture.text());
    EXPECT_EQ("", logged()) << "cells without value are no fault";

    table.setLabelFieldCount(1); // the first per-entity field names the rows: no unit, and no entity column
    table.setFieldValueAt(a, 1, Data(1.0));
    capture.stream().pushMessage(table);
    EXPECT_EQ("value | count (MHz) | text | Share (%) | Energy (mJ) | of", capture.tables().back().columns);
}

TEST(TableMessage, hasHeadersAndUnitsWhenThereAreAny) {
    TableMessage table("t", nullptr);
    pwr::FieldDescription nameless("x", "", DataType::INT);
    nameless.setFieldName("");
    table.addField(nameless, DataType::INT, false);
    EXPECT_FALSE(table.hasFieldHeaders());
    table.addField("y", DataType::INT, false);
    EXPECT_TRUE(table.hasFieldHeaders());
    std::string units = "old";
    EXPECT_FALSE(TableMessage::quantityToUnits(nullptr, units));
    EXPECT_EQ("", units);
    EXPECT_TRUE(TableMessage::quantityToUnits(pwr::Quantity::power(), units));
    EXPECT_EQ("mW", units);
}

} // namespace
