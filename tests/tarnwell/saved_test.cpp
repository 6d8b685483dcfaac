#include "common/pw_utils.h"
#include "tests/tarnwell/program_runner.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

// Saving, and everything that is asked of a saved file, as a user does it.

namespace {

namespace fs = std::filesystem;
using namespace kr_test;

const bool kOnWindows = pwr::PathOps::getPathSeparator() == '\\';

std::string machine() {
    return (dataFolder() / "machines" / "one_processor.bundle").string();
}

/// A saved collection of a recorded machine, in the scratch folder.
std::string save(const ScratchFolder& scratch, const std::vector<std::string>& further = {}) {
    std::vector<std::string> arguments = {"--machine", machine(), "--save", "good.twc"};
    arguments.insert(arguments.end(), further.begin(), further.end());
    const ProgramResult result = runProgram(scratch, arguments);
    EXPECT_EQ(0, result.exitCode) << result.errors;
    return result.output;
}

void expectSaid(const ProgramResult& result, int exitCode, const std::vector<std::string>& texts) {
    EXPECT_EQ(exitCode, result.exitCode) << result.output << result.errors;
    const std::string said = result.output + result.errors;
    for (const std::string& text : texts) {
        EXPECT_NE(std::string::npos, said.find(text)) << "not said: " << text << "\nsaid: " << said;
    }
}

/// The file header's checksum, of its first 28 bytes.
std::string checksum(const std::string& bytes) {
    std::uint32_t crc = 0xFFFFFFFF;
    for (const char byte : bytes) {
        crc ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc >> 1) ^ ((crc & 1) != 0 ? 0x82F63B78 : 0);
        }
    }
    std::string text;
    for (const std::uint32_t rest = ~crc; text.size() < 4;) {
        text += static_cast<char>(rest >> (8 * text.size()) & 0xFF);
    }
    return text;
}

TEST(Saved, whatIsNoSoundCollectionIsNamedByEveryCommand) {
    const ScratchFolder scratch;
    save(scratch);
    const std::string good = readFile("good.twc");
    std::string newer = good;
    newer[8] = 2;
    newer.replace(28, 4, checksum(newer.substr(0, 28)));
    std::string flipped = good;
    flipped[good.size() / 2] = static_cast<char>(flipped[good.size() / 2] ^ 1);
    struct Case {
        std::string file;
        std::string bytes;
        std::vector<int> codes; ///< of the report, verify, export, repair, and verify of what was repaired
        std::string text;
    };
    const std::vector<int> kUnusable = {1, 1, 1, 1};
    const std::vector<Case> cases = {
        {"text.twc", "tick,seconds\r\n1,2\r\n", kUnusable, "text.twc"},
        {"empty.twc", "", kUnusable, "empty.twc"},
        {"newer.twc", newer, kUnusable, "newer version"},
        {"missing.twc", "", kUnusable, "missing.twc"},
        {"folder.twc", "", kUnusable, "folder.twc"},
        {"cut.twc", good.substr(0, good.size() / 2), {4, 4, 4, 4, 4}, "closed"},
        {"flipped.twc", flipped, {4, 4, 4, 4, 4}, "flipped.twc"}, // the hole stays known,
        {"good.twc", good, {0, 0, 0, 0, 0}, ""},
    };
    fs::create_directory("folder.twc");
    for (const Case& badCase : cases) {
        SCOPED_TRACE(badCase.file);
        if (badCase.file != "missing.twc" && badCase.file != "folder.twc") {
            writeFile(badCase.file, badCase.bytes);
        }
        const std::vector<std::vector<std::string>> commands = {{"--input", badCase.file},
                                                                {"verify", badCase.file},
                                                                {"export", badCase.file, "--csv"},
                                                                {"repair", badCase.file, "repaired.twc"}};
        for (std::size_t i = 0; i < commands.size(); ++i) {
            SCOPED_TRACE(commands[i].front());
            expectSaid(runProgram(scratch, commands[i]), badCase.codes[i],
                       {i == 3 && badCase.codes[i] == 4 ? "repaired.twc" : badCase.text});
        }
        EXPECT_EQ(badCase.codes[3] != 1, fs::exists("repaired.twc"));
        if (fs::exists("repaired.twc")) {
            expectSaid(runProgram(scratch, {"verify", "repaired.twc"}), badCase.codes[4], {"whole"});
            expectSaid(runProgram(scratch, {"repair", "good.twc", "repaired.twc"}), 2,
                       {"repaired.twc exists"});
            fs::remove("repaired.twc");
        }
    }
}

TEST(Saved, aFileIsNeverOverwrittenUnasked) {
    const ScratchFolder scratch;
    writeFile("good.twc", "mine");
    const std::vector<std::string> arguments = {"--machine", machine(), "--save", "good.twc"};
    expectSaid(runProgram(scratch, arguments), 2, {"good.twc exists", "--overwrite", "--no-save"});
    EXPECT_EQ("mine", readFile("good.twc"));
    save(scratch, {"--overwrite"});
    expectSaid(runProgram(scratch, {"verify", "good.twc"}), 0, {"whole"});
}

TEST(Saved, nothingIsLeftWhereNothingWasCollected) {
    const ScratchFolder scratch;
    expectSaid(runProgram(scratch, {"--feature", "cpu", "--", "no-such-command-at-all"}), 127, {});
    expectSaid(runProgram(scratch, {"--machine", machine(), "--save", "no-such-folder/x.twc"}), 1,
               {"no-such-folder", "--save", "--no-save"});
    expectSaid(runProgram(scratch, {"--machine", machine(), "--no-save"}), 0, {});
    EXPECT_EQ("", scratch.savedFile());
    EXPECT_FALSE(fs::exists("no-such-folder"));
}

TEST(Saved, aFullDiskEndsTheSavingButNotTheReport) {
    if (kOnWindows) {
        GTEST_SKIP() << "no limit on file sizes here";
    }
    const ScratchFolder scratch;
    const std::vector<std::string> arguments = {"--machine", machine(), "--feature",
                                                "cpu",       "--save",  "full.twc"};
    const ProgramResult result = runProgram(scratch, arguments, "ulimit -f 3; ");
    expectSaid(result, 1, {"full.twc", "is not saved from here on"});
    EXPECT_NE(std::string::npos, result.output.find("9 polls"));
    EXPECT_EQ(4, runProgram(scratch, {"verify", "full.twc"}).exitCode);
}

TEST(Saved, argumentsBeyondWhatARecordHoldsAreLeftOut) {
    if (kOnWindows) {
        GTEST_SKIP() << "no command lines of that length here";
    }
    const ScratchFolder scratch;
    expectSaid(runProgram(scratch,
                          {"--feature", "cpu", "--save", "long.twc", "--", "true", std::string(70000, 'x')}),
               0, {});
    expectSaid(runProgram(scratch, {"verify", "long.twc"}), 0, {"whole"});
}

TEST(Saved, optionsOfCollectingMakeNoSenseWithInput) {
    const ScratchFolder scratch;
    save(scratch);
    struct Case {
        std::vector<std::string> options;
        std::string text;
    };
    const std::vector<Case> cases = {{{"--time", "1"}, "--time"},
                                     {{"--interval", "5"}, "--interval"},
                                     {{"--machine", "/"}, "--machine"},
                                     {{"--save", "x.twc"}, "--save"},
                                     {{"--overwrite"}, "--overwrite"},
                                     {{"--", "true"}, "a command"},
                                     {{"--feature", "warp"}, "unknown feature \"warp\""},
                                     {{"--feature"}, "--feature without a name"}};
    for (const Case& badCase : cases) {
        std::vector<std::string> arguments = {"--input", "good.twc"};
        arguments.insert(arguments.end(), badCase.options.begin(), badCase.options.end());
        expectSaid(runProgram(scratch, arguments), 2, {badCase.text});
    }
    expectSaid(runProgram(scratch, {"--input", ""}), 2, {"--input \"\""});
    expectSaid(runProgram(scratch, {"--save", "a.twc", "--no-save"}), 2, {"--save"});
    expectSaid(runProgram(scratch, {"export", "good.twc"}), 2, {"--csv"});
}

TEST(Saved, aReportCanShowLessOrUnderOtherTitles) {
    const ScratchFolder scratch;
    const std::string whole = save(scratch);
    const ProgramResult cpu = runProgram(scratch, {"--input", "good.twc", "--feature", "cpu"});
    expectSaid(cpu, 0, {"Processor time by mode"});
    EXPECT_EQ(std::string::npos, cpu.output.find("System memory"));
    EXPECT_LT(cpu.output.size(), whole.size());
    // Not on the machine that collected; the reason is that machine's.
    expectSaid(runProgram(scratch, {"--input", "good.twc", "--feature", "temperature", "--feature", "cpu"}),
               3, {"temp is not available: no sensors in", "Processor time by mode", "Missing: temp"});
    writeFile("own.cfg", "cpu_CPU-TIME_TOTAL-RESIDENCY_TITLE_VALUE=My own title\n");
    const ProgramResult own = runProgram(scratch, {"--input", "good.twc", "--output-config", "own.cfg"});
    EXPECT_EQ(0, own.exitCode);
    EXPECT_EQ(std::string::npos, own.output.find("Processor time by mode"));
}

TEST(Saved, rawSamplesAreExportedAsTheyWereRead) {
    const ScratchFolder scratch;
    const std::string file = (dataFolder() / "saved_files" / "linux.twc").string();
    const ProgramResult csv = runProgram(scratch, {"export", file, "--csv"});
    EXPECT_EQ(0, csv.exitCode) << csv.errors;
    const ProgramResult json = runProgram(scratch, {"export", file, "--jsonl", "--output", "all.jsonl"});
    EXPECT_EQ(0, json.exitCode) << json.errors;
    EXPECT_EQ("", json.output);
    const std::string lines = readFile("all.jsonl");
    // A header, a value, and one that could not be read while their processor was offline.
    for (const char* line : {"tick,seconds,message,feature,entity,descriptor,value\r\n",
                             "\n1800000000,0.800000000,NETWORK-PACKETS,network,wwan0,Sent,108\r\n",
                             "\n1300000000,0.300000000,IDLE-TIME,idle,Package_0/Core_9/Thread_5,POLL,\r\n"}) {
        EXPECT_NE(std::string::npos, csv.output.find(line)) << line << "\n" << csv.output.substr(0, 1000);
    }
    EXPECT_NE(std::string::npos,
              lines.find(R"({"tick":1300000000,"seconds":0.300000000,"message":"IDLE-TIME","feature":"idle",)"
                         R"("entity":"Package_0/Core_9/Thread_5","descriptor":"POLL","value":null})"));
    EXPECT_EQ(361, std::count(csv.output.begin(), csv.output.end(), '\n'));
    EXPECT_EQ(360, std::count(lines.begin(), lines.end(), '\n'));
}

} // namespace
