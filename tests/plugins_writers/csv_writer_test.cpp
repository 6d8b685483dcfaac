#include "tests/plugins_writers/writer_fixture.h"

#include <cmath>
#include <locale>

namespace {

class CsvWriterTest : public tests::WriterFixture {
protected:
    CsvWriterTest() : WriterFixture("csv") {}
};

/// Decimal comma and grouped thousands, as a host's global locale may have them.
class CommaNumbers : public std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST_F(CsvWriterTest, numbersAreNumbersInEveryLocale) {
    const std::locale old = std::locale::global(std::locale(std::locale(), new CommaNumbers));
    setPrefix("run");
    const pwr::EntityHandle* core =
        pwr::EntityHandle::create("core0", pwr::EntityHandle::create("package0", nullptr));
    pwr::TableMessage table("Energy", pwr::Quantity::energy());
    const pwr::RealFormatter rounded("J", 12, 0);
    table.setSource("power", "ENERGY", "TOTAL-DELTA");
    table.addEntity(core);
    table.addField("Real", pwr::DataType::REAL, &rounded);
    table.addField("Unsigned", pwr::DataType::UINT, false);
    table.addField("Range", pwr::DataType::INT_RANGE, false);
    table.addField("Of", pwr::DataType::HANDLE, false);
    table.addField("Version", pwr::DataType::STRING, true);
    table.createTable();
    table.setFieldValueAt(core, 0, pwr::Data(12345.1));
    table.setFieldValueAt(core, 1, pwr::Data(std::uint64_t{18446744073709551615U}));
    table.setFieldValueAt(core, 2, pwr::Data(std::int64_t{-3}, std::int64_t{9}));
    table.setFieldValueAt(core, 3, pwr::Data(*core));
    table.setFieldValueAt(nullptr, 4, pwr::Data(std::string("v1")));
    stream().pushMessage(table);
    EXPECT_EQ(std::set<std::string>{}, files()) << "an aborted run leaves no files";
    EXPECT_EQ(0, flush());
    std::locale::global(old);
    EXPECT_EQ("Entity,Version,Real (mJ),Unsigned (mJ),Range (mJ),Of\n"
              "package0/core0,v1,12345.1,18446744073709551615,-3 -- 9,package0/core0\n",
              file("run_power_ENERGY_TOTAL-DELTA.csv"));
}

TEST_F(CsvWriterTest, oddTextsAreQuotedAndUnknownIsEmpty) {
    setPrefix("run");
    push("t", {"a,b", "c \"d\""},
         {{"line\nend", {1, NAN}}, {"", {INFINITY, -0.125}}, {"plain", {1e300, 0.1}}}, "f", "c", "k");
    push("t", {"x"}, {}, "f", "c", "EMPTY");
    EXPECT_EQ(0, flush());
    EXPECT_EQ("Name,\"a,b\",\"c \"\"d\"\"\"\n\"line\nend\",1,\n,,-0.125\nplain,1e+300,0.1\n",
              file("run_f_c_k.csv"));
    EXPECT_EQ("Name,x\n", file("run_f_c_EMPTY.csv"));
}

TEST_F(CsvWriterTest, fileNamesAreSafeAndUnique) {
    setPrefix("p");
    for (const char* key : {"KEY", "key", "../../etc/x y", "..", "KEY"}) {
        push("The title", {}, {{"a", {}}}, "f/1", "c:2", key);
    }
    push("A title / with <signs>", {}, {{"a", {}}});
    EXPECT_EQ(0, flush());
    EXPECT_EQ((std::set<std::string>{"p_f-1_c-2_KEY.csv", "p_f-1_c-2_key_2.csv", "p_f-1_c-2_etc-x-y.csv",
                                     "p_f-1_c-2.csv", "p_f-1_c-2_KEY_3.csv", "p_A-title-with-signs.csv"}),
              files());
}

TEST_F(CsvWriterTest, writesOnlyWithPrefixAndReportsFailures) {
    push("t", {"n"}, {{"a", {1}}});
    EXPECT_EQ(0, flush());
    setPrefix("missing/run");
    push("t", {"n"}, {{"a", {1}}});
    EXPECT_EQ(1, flush());
    EXPECT_EQ(0U, log.text().find("ERROR: Cannot write the table " + folder()));
    EXPECT_EQ(std::set<std::string>{}, files());
    EXPECT_EQ("", printed());
}

} // namespace
