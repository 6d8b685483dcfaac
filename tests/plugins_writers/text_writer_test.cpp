#include "common/metadata/system_metadata.h"
#include "tests/plugins_writers/writer_fixture.h"

#include <cmath>

namespace {

class TextWriterTest : public tests::WriterFixture {
protected:
    TextWriterTest() : WriterFixture("text") {}

    std::vector<std::string> lines() const {
        std::vector<std::string> all;
        std::istringstream in(printed());
        for (std::string line; std::getline(in, line);) {
            all.push_back(line);
        }
        return all;
    }
};

TEST_F(TextWriterTest, reportHasFactsAndConfiguredOrder) {
    auto* parser = pwr::WriterInterfaceConfigFileParser::instance();
    parser->parseText("order",
                      "ALL_OUTPUT-ORDER_TAG_FEATURE_ORDER=time, net\nALL_net_TAG_TABLE_ORDER=BYTES, PACKETS\n"
                      "ALL_time_TAG_TABLE_ORDER=MODE\n");
    pwr::SystemMetadata metadata;
    metadata.hostName = "box";
    metadata.osName = "Linux";
    metadata.osVersion = "6.1";
    metadata.twaClockFreq = 1000.0F;
    metadata.startTimeval = 1772368200000000; // 2026-03-01 12:30:00 UTC
    pwr::SystemMessage system(&metadata);
    stream().pushMessage(system);
    metadata.stopTSC = 2500000000; // told at the end of the collection

    pwr::MetricContainerInfoMessage packets;
    packets.setMetricContainerId(7);
    packets.setMetricFeatureTag("net");
    packets.setMetricContainerTag("PACKETS");
    packets.setContainerHeader("Packets");
    stream().pushMessage(packets);
    push("Zeta", {"n"}, {{"a", {1}}}, "unknown", "X");
    pwr::TableMessage table("Packets", nullptr); // knows its place only by its container
    table.setMetricContainerId(7);
    table.addField("total", pwr::DataType::UINT, true);
    table.createTable();
    table.setFieldValueAt(nullptr, 0, pwr::Data(std::uint64_t{12}));
    stream().pushMessage(table);
    wantsNotes = true;
    push("Bytes", {"Rate (MB/s)"}, {{"lo", {0.5}}, {"eth0", {NAN}}}, "net", "BYTES");
    wantsNotes = false;
    push("Modes", {"user"}, {{"cpu0", {99.5}}}, "time", "MODE");
    stream().pushTextMessage("2 ticks missed\n");
    ASSERT_EQ(0, flush());
    EXPECT_EQ("Collection\n"
              "==========\n"
              "Host       box\n"
              "System     Linux 6.1\n"
              "Begin      2026-03-01 12:30:00 UTC\n"
              "Duration   2.500 s\n"
              "\n"
              "time\n"
              "====\n"
              "\n"
              "Modes\n"
              "\n"
              "Name   user\n"
              "----  -----\n"
              "cpu0  99.50\n"
              "\n"
              "net\n"
              "===\n"
              "\n"
              "Bytes\n"
              "\n"
              "about Bytes\n"
              "\n"
              "Name  Rate (MB/s)\n"
              "----  -----------\n"
              "lo           0.50\n"
              "eth0        <N/A>\n"
              "\n"
              "=======\n"
              "Packets\n"
              "=======\n"
              "\n"
              "Packets\n"
              "\n"
              "total\n"
              "-----\n"
              "   12\n"
              "\n"
              "unknown\n"
              "=======\n"
              "\n"
              "Zeta\n"
              "\n"
              "Name     n\n"
              "----  ----\n"
              "a     1.00\n"
              "\n"
              "2 ticks missed\n",
              printed());
    EXPECT_EQ(0, flush()) << "a report is printed once";
    EXPECT_EQ(std::string::npos, printed().find("Collection", 1));
}

TEST_F(TextWriterTest, wideTablesAreCutIntoBlocksThatRepeatTheLabels) {
    push("Intervals",
         {"Min sampling interval (msec)", "Max sampling interval (msec)", "Avg sampling interval (msec)"},
         {{"cpu0", {99.5, 101, 100}}});
    push("States", std::vector<std::string>(15, "ab"), {{"processor", std::vector<double>(15, 12.25)}});
    ASSERT_EQ(0, flush());
    EXPECT_EQ("Intervals\n"
              "\n"
              "      Min sampling  Max sampling  Avg sampling\n"
              "          interval      interval      interval\n"
              "Name        (msec)        (msec)        (msec)\n"
              "----  ------------  ------------  ------------\n"
              "cpu0         99.50        101.00        100.00\n",
              printed().substr(0, printed().find("\nStates")));
    unsigned labels = 0;
    for (const std::string& line : lines()) {
        EXPECT_GE(80U, line.size()) << line;
        labels += line.rfind("processor  12.25", 0) == 0 ? 1U : 0U;
    }
    EXPECT_EQ(2U, labels);
}

TEST_F(TextWriterTest, oddCellsKeepTheirLine) {
    push("Odd", {"n"}, {{"a\nb\tc", {INFINITY}}, {"\xc3\xa4", {-1}}});
    push("None", {"n"}, {});
    ASSERT_EQ(0, flush());
    EXPECT_EQ("Odd\n\nName       n\n-----  -----\na b c    inf\n\xc3\xa4      -1.00\n\nNone\n\n(no data)\n",
              printed());
}

TEST_F(TextWriterTest, optionsAreCheckedAndColourStaysOffTheFile) {
    for (const auto& [key, value] :
         {std::pair("color", "yes"), {"width", "39"}, {"width", "80x"}, {"depth", "1"}}) {
        EXPECT_EQ(1, writer().setOption(key, value)) << key << "=" << value;
    }
    EXPECT_EQ(0, writer().setOption("color", "1"));
    EXPECT_EQ(0, writer().setOption("width", "40"));
    setPrefix("run");
    push("T", {"n"}, {{"a", {1}}});
    ASSERT_EQ(0, flush());
    EXPECT_EQ(0U, printed().find("\033[1mT\033[0m\n"));
    EXPECT_EQ("T\n\nName     n\n----  ----\na     1.00\n", file("run.txt"));
    EXPECT_EQ(std::set<std::string>{"run.txt"}, files());
}

TEST_F(TextWriterTest, aReportThatCannotBeWrittenLeavesNothingBehind) {
    setPrefix("missing/run");
    push("T", {"n"}, {{"a", {1}}});
    EXPECT_EQ(1, flush());
    EXPECT_EQ(0U, log.take().find("ERROR: Cannot write the report " + folder()));
    EXPECT_NE("", printed()) << "the output is not the file";

    setPrefix("taken");
    std::filesystem::create_directories(std::filesystem::path(folder()) / "taken.txt" / "full");
    push("T", {"n"}, {{"a", {1}}});
    EXPECT_EQ(1, flush());
    EXPECT_EQ(std::set<std::string>{"taken.txt"}, files());
}

TEST_F(TextWriterTest, aFullDiskKeepsTheEarlierReport) {
    const std::filesystem::path folderPath(folder());
    std::ofstream(folderPath / "run.txt") << "earlier";
    std::error_code failure;
    std::filesystem::create_symlink("/dev/full", folderPath / "run.txt.part", failure);
    if (failure || !std::filesystem::exists("/dev/full")) {
        GTEST_SKIP() << "this system has no device that is always full";
    }
    setPrefix("run");
    push("T", {"n"}, {{"a", {1}}});
    EXPECT_EQ(1, flush());
    EXPECT_EQ("ERROR: Cannot write the report " + (folderPath / "run.txt").string() +
                  ": No space left on device\n",
              log.text());
    EXPECT_EQ("earlier", file("run.txt"));
    EXPECT_EQ(std::set<std::string>{"run.txt"}, files());
}

} // namespace
