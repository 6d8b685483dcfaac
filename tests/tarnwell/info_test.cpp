#include "common/metadata/collector_metadata.h"
#include "common/metadata/cpu_metadata.h"
#include "common/metadata/cxh_metadata.h"
#include "common/metadata/metric_metadata.h"
#include "common/metadata/msg_metadata.h"
#include "common/metadata/system_metadata.h"
#include "common/pw_utils.h"
#include "common/saved/collection_writer.h"
#include "tests/tarnwell/program_runner.h"

#include <gtest/gtest.h>

#include <regex>

// What `tarnwell info` tells. Expected texts are in tests/tarnwell/info; UPDATE_CASES=1 writes what came out.

namespace {

using namespace kr_test;

constexpr pw_u64_t kBegin = 1790000000123456;

/// Every item of the record has a value of its own, so that none can be left out or stand for another.
void fillSystem(pwr::SystemMetadata& system) {
    system.sidMap[3] = "uuid-of-stream";
    system.driverVersion = pwr::packSavedVersion(2, 3, 4);
    system.scuVersion = pwr::packSavedVersion(5, 6, 7);
    system.platformName = "Some processor";
    system.hostName = "host \x1b[31m";
    system.osName = "Some system";
    system.osType = "some type";
    system.osVersion = "6.1";
    system.twaClockFreq = 2400.1F;
    system.startTSC = 1000;
    system.stopTSC = 1000 + 2400100000ULL * 5;
    system.startTimeval = kBegin;
    system.stopTimeval = kBegin + 5000000;
    system.programStartTimeval = kBegin - 1000000;
    system.programStopTimeval = kBegin + 7000000;
    system.pollingInterval = 50;
    system.immediateMode = system.vsmEnabled = system.edramCapable = true;
    system.cmdLine = {"tarnwell", "--time", "5"};
    system.producedSamples = 18446744073709551615ULL;
    system.droppedSamples = 21;
    system.platformSpecifiers = {{"kind", "laptop"}};
    system.igfxId = 0x46a6;
    system.driverBuildDate = "driver's day";
    system.appBuildDate = "application's day";
    system.continuousQuantum = 60;
    system.nonNumericVersion = "rc";
    system.buildRef = "a1b2c3";
    system.packageType = "deb";
    system.clockSyncs.push_back({"uuid-1", "QPC", 10.0F, 77, "uuid-2", "TSC", 2400.1F, 1010});
    system.tafEndpoints[7] = {0x1000, 0x2000, 96, 7, 12, 1};
    system.pciDevices.push_back({1, 2, 31, 3, 0x1234, 0xabcd, "Some device"});
    auto cpu = std::make_unique<pwr::CPUMetadata>();
    cpu->setFMS(6, 154, 3);
    cpu->setDisplayName("Some code name");
    cpu->addSpecifierValue("6.154");
    cpu->addMetadataValue("LITHOGRAPHY", "fine");
    cpu->busFreq = 99.8F;
    cpu->lfmFreq = 400;
    cpu->baseOpFreq = 2100;
    cpu->hfmFreq = 4700;
    cpu->platformId = 0x80;
    cpu->microcodeRevision = 0x430;
    cpu->buildTopology("0 0 0 0 -1 -1  1 0 0 0 -1 -1  2 0 1 0 -1 -1", 0);
    cpu->buildHWQFeedbackMapping("1 2");
    cpu->addTopologyChange(pwr::TopologyChange({1500, 1, 2, 1, 0}, 0));
    system.setPlatformMetadata(pwr::PlatformType::CPU, cpu.release());
    auto chipset = std::make_unique<pwr::CXHMetadata>();
    chipset->addRegisterEntry(0x100, 5);
    system.setPlatformMetadata(pwr::PlatformType::CXH, chipset.release());
}

/// Writes a collection of one reading; closes it or not.
void writeCollection(const std::string& path, bool isClosed) {
    pwr::SystemMetadata system;
    fillSystem(system);
    std::string error;
    const auto writer =
        pwr::saved::CollectionWriter::create(path, pwr::saved::CollectionWriter::Existing::REPLACE, error);
    ASSERT_NE(nullptr, writer) << error;
    writer->addConfiguration("tables.cfg", "text of the configuration");
    writer->addDeclaration(
        pwr::CollectorMetadata("files", {{"state", "unavailable"}, {"reason", "no\nright"}}));
    pwr::MsgMetadata message(1, 2, 3, "swap", "Pages");
    message.addCapGroup("memory");
    message.addTrigger("POLL");
    message.addTracepointName("paging");
    message.addMetaValue(pwr::OperationMetadata("pswpin", "TEXT-FILE", 8, "IN", {{"PATH", "/proc/vmstat"}}));
    writer->addDeclaration(message);
    writer->addDeclaration(pwr::MetricMetadata(1, 2, {{"METRIC-NAME", "Pages swapped in"}}));
    ASSERT_EQ(0, writer->begin(system));
    ASSERT_EQ(0, writer->addMoment(1010, kBegin, {system.clockSyncs.front()}));
    CollectionData reading;
    reading.header().timestamp = 1000 + 2400100000ULL;
    reading.header().id = {1, 2, 3};
    ASSERT_EQ(0, reading.add(42));
    ASSERT_EQ(0, writer->append(reading));
    ASSERT_EQ(0, writer->settle(1000 + 2400100000ULL * 3));
    if (isClosed) {
        ASSERT_EQ(0, writer->addNotes({"first note", "second note"}));
        ASSERT_EQ(0, writer->end(system));
    }
}

/// Sizes follow the compression, whose versions differ.
std::string masked(const std::string& text) {
    static const std::regex sizes("(\nBytes  +|\"bytes\": |\nBlocks  +|\"blocks\": )[0-9]+");
    return std::regex_replace(text, sizes, "$1#");
}

void expectCase(const std::string& name, const std::string& text) {
    const std::filesystem::path file = dataFolder() / "tarnwell" / "info" / name;
    if (!pwr::pw_getenv("UPDATE_CASES").empty()) {
        writeFile(file, masked(text));
    }
    EXPECT_EQ(readFile(file), masked(text)) << file;
}

TEST(Info, tellsAllThatTheFileHolds) {
    const ScratchFolder scratch;
    std::filesystem::current_path(scratch.path());
    ASSERT_NO_FATAL_FAILURE(writeCollection("made.tw", true));
    for (const bool asJson : {false, true}) {
        std::vector<std::string> arguments = {"info", "made.tw"};
        arguments.resize(asJson ? 3 : 2, "--json");
        const ProgramResult result = runProgram(scratch, arguments);
        EXPECT_EQ(0, result.exitCode) << result.errors;
        EXPECT_EQ("", result.errors);
        expectCase(asJson ? "made.json" : "made.txt", result.output);
    }
    std::filesystem::current_path(dataFolder());
}

TEST(Info, tellsWhatIsMissing) {
    const ScratchFolder scratch;
    std::filesystem::current_path(scratch.path());
    ASSERT_NO_FATAL_FAILURE(writeCollection("open.tw", false));
    ASSERT_NO_FATAL_FAILURE(writeCollection("flipped.tw", true));
    std::string bytes = readFile("flipped.tw");
    ASSERT_LT(200U, bytes.size());
    char& flipped = bytes[bytes.size() - 40]; // in the index, in front of its place
    flipped = static_cast<char>(flipped ^ 1);
    writeFile("flipped.tw", bytes);
    writeFile("other.tw", "no saved collection at all, but long enough to hold the header of one");

    struct Case {
        std::vector<std::string> arguments;
        int exitCode;
        const char* output; ///< a part of it
        const char* errors;
    };
    const Case cases[] = {
        // The one reading is a second after the begin; nothing but reading it tells.
        {{"info", "open.tw"}, 4, "Last reading  1.000 s\n", ""},
        {{"info", "open.tw"}, 4, "\nThe file was not closed: what was collected last may be missing.\n", ""},
        {{"info", "--json", "open.tw"}, 4, "\"is_closed\": false,", ""},
        {{"info", "flipped.tw"}, 4, "\nDamage\n======\n", ""},
        {{"info", "--json", "flipped.tw"}, 4, "\"is_whole\": false,", ""},
        {{"info", "missing.tw"}, 1, "", "missing.tw"},
        {{"info", "other.tw"}, 1, "", "other.tw"},
        {{"info"}, 2, "", "FILE"},
        {{"info", "open.tw", "--", "true"}, 2, "", "runs no command"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(::testing::PrintToString(c.arguments));
        const ProgramResult result = runProgram(scratch, c.arguments);
        EXPECT_EQ(c.exitCode, result.exitCode);
        EXPECT_NE(std::string::npos, result.output.find(c.output)) << result.output;
        EXPECT_NE(std::string::npos, result.errors.find(c.errors)) << result.errors;
    }
    std::filesystem::current_path(dataFolder());
}

} // namespace
