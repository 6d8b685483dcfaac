#include "common/pw_utils.h"
#include "tests/tarnwell/program_runner.h"

#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;
using namespace kr_test;

const bool kOnWindows = pwr::PathOps::getPathSeparator() == '\\';

std::string machine() {
    return (dataFolder() / "machines" / "one_processor.bundle").string();
}

void expectFailure(const ProgramResult& result, int exitCode, const std::vector<std::string>& texts) {
    EXPECT_EQ(exitCode, result.exitCode) << result.errors;
    for (const std::string& text : texts) {
        EXPECT_NE(std::string::npos, result.errors.find(text))
            << "not said: " << text << "\nsaid: " << result.errors;
    }
}

TEST(BadInput, onTheCommandLineIsNamed) {
    struct Case {
        std::vector<std::string> arguments;
        int exitCode;
        std::vector<std::string> texts;
    };
    const std::vector<Case> cases = {
        {{"--interval", "0"}, 2, {"--interval 0", "1 to 60000"}},
        {{"--interval", "-5"}, 2, {"--interval"}},
        {{"--interval", "99999999999999999999"}, 2, {"--interval 99999999999999999999"}},
        {{"--interval", "10ms"}, 2, {"--interval 10ms"}},
        {{"--interval", "1.5"}, 2, {"--interval 1.5"}},
        {{"--time", "0"}, 2, {"--time 0"}},
        {{"--time", "nan"}, 2, {"--time nan"}},
        {{"--time", "1e12"}, 2, {"--time 1e12"}},
        {{"--time", ""}, 2, {"--time \"\""}},
        {{"--output", ""}, 2, {"--output \"\""}},
        {{"doctor", "--", "true"}, 2, {"runs no command"}},
        {{"--endpoints", "relative"}, 2, {"--endpoints relative", "from / on"}},
        {{"--nonsense"}, 2, {"--nonsense"}},
        {{"--"}, 2, {"no command"}},
        {{"--feature", "warp"}, 2, {"unknown feature \"warp\"", "idle"}},
        {{"--machine", "no-such-place"}, 1, {"no-such-place"}},
        {{"--time", "0.01", "--", "no-such-command-at-all"}, 127, {"no-such-command-at-all"}},
        {{"--output", "no-such-folder/run"}, 1, {"no-such-folder"}},
    };
    for (const Case& badCase : cases) {
        SCOPED_TRACE(::testing::PrintToString(badCase.arguments));
        const ScratchFolder scratch;
        std::vector<std::string> arguments = {"--machine", machine()};
        if (badCase.arguments.front() == "--machine") {
            arguments.clear();
        }
        arguments.insert(arguments.end(), badCase.arguments.begin(), badCase.arguments.end());
        const ProgramResult result = runProgram(scratch, arguments);
        expectFailure(result, badCase.exitCode, badCase.texts);
        EXPECT_EQ("", result.output);
    }
}

TEST(BadInput, inTheOutputConfigurationIsNamedWithFileLineAndWhat) {
    const ScratchFolder scratch;
    const fs::path config = scratch.path() / "part.cfg";
    writeFile(config, "# order\nALL_OUTPUT-ORDER_TAG_FEATURE_ORDER=idle\nidle_IDLE_nonsense=1\nalso_bad=2\n");
    const ProgramResult result =
        runProgram(scratch, {"--machine", machine(), "--output-config", config.string()});
    expectFailure(result, 1,
                  {"ERROR parsing line idle_IDLE_nonsense=1 (part.cfg:3)",
                   "ERROR parsing line also_bad=2 (part.cfg:4)", "ERROR parsing config file"});
    EXPECT_EQ("", result.output);

    const ProgramResult missing =
        runProgram(scratch, {"--machine", machine(), "--output-config", "absent.cfg"});
    expectFailure(missing, 1, {"Error opening config file absent.cfg"});
}

TEST(BadInput, aMalformedBundleIsNamedWithLine) {
    const ScratchFolder scratch;
    const fs::path bundle = scratch.path() / "broken.bundle";
    writeFile(bundle, "tarnwell-machine 1\n@1000000000\nfile /proc/stat 99999999\nshort\nend\n");
    expectFailure(runProgram(scratch, {"--machine", bundle.string()}), 1, {"broken.bundle:3"});
}

TEST(BadInput, aFullDiskLeavesNoHalfReport) {
    if (kOnWindows) {
        GTEST_SKIP() << "no limit on file sizes here";
    }
    const ScratchFolder scratch;
    const fs::path prefix = scratch.path() / "run";
    // One block of 512 bytes for every file that the program writes.
    const ProgramResult result =
        runProgram(scratch, {"--machine", machine(), "--output", prefix.string()}, "ulimit -f 1; ");
    expectFailure(result, 1, {"run.txt"});
    EXPECT_FALSE(fs::exists(prefix.string() + ".txt"));
    EXPECT_FALSE(fs::exists(prefix.string() + ".txt.part"));
}

/// Puts a file among the installed plug-ins for the length of one test.
class StrayPlugin {
public:
    StrayPlugin(const std::string& name, const std::string& text)
        : m_path(installedLibraryFolder() / "plugins" / name) {
        writeFile(m_path, text);
    }
    StrayPlugin(const StrayPlugin&) = delete;
    StrayPlugin& operator=(const StrayPlugin&) = delete;
    ~StrayPlugin() { fs::remove(m_path); }

private:
    fs::path m_path;
};

TEST(BadInput, aPluginThatDoesNotLoadIsNamedAndTheRestGoesOn) {
    const ScratchFolder scratch;
    const StrayPlugin stray(kOnWindows ? "stray.dll" : "stray.so", "this is no module");
    const ProgramResult result = runProgram(scratch, {"--machine", machine()});
    expectFailure(result, 3, {"stray"});
    EXPECT_NE(std::string::npos, result.output.find("Processor"));
}

TEST(Program, saysWhatTheMachineOffersAndWhyNotTheRest) {
    const ScratchFolder scratch;
    const ProgramResult doctor = runProgram(scratch, {"doctor", "--machine", machine()});
    EXPECT_EQ(0, doctor.exitCode) << doctor.errors;
    for (const char* text : {"idle", "cpu", "temp", "why: "}) {
        EXPECT_NE(std::string::npos, doctor.output.find(text)) << text << "\n" << doctor.output;
    }
    EXPECT_EQ(doctor.output, runProgram(scratch, {"--machine", machine(), "--feature"}).output);
}

TEST(Program, missingFeatureIsPartialAndTheOthersGoOn) {
    const ScratchFolder scratch;
    const ProgramResult result =
        runProgram(scratch, {"--machine", machine(), "--feature", "temperature", "--feature", "cpu"});
    expectFailure(result, 3, {"temp is not available: "});
    EXPECT_NE(std::string::npos, result.output.find("Missing: temp"));
    EXPECT_NE(std::string::npos, result.output.find("Processor"));
}

TEST(Program, commandsCodeWins) {
    const ScratchFolder scratch;
    const std::vector<std::string> shell = kOnWindows ? std::vector<std::string>{"cmd", "/c", "exit 7"}
                                                      : std::vector<std::string>{"sh", "-c", "exit 7"};
    std::vector<std::string> arguments = {"--feature", "cpu", "--"};
    arguments.insert(arguments.end(), shell.begin(), shell.end());
    EXPECT_EQ(7, runProgram(scratch, arguments).exitCode);
}

TEST(Program, aLiveCollectionReportsEveryAvailableFeature) {
    const ScratchFolder scratch;
    const ProgramResult result = runProgram(scratch, {"--time", "0.5", "--interval", "50", "--quiet"});
    EXPECT_EQ(0, result.exitCode) << result.errors;
    EXPECT_EQ("", result.errors);
    EXPECT_NE(std::string::npos, result.output.find("Processor")) << result.output;
    EXPECT_EQ(std::string::npos, result.output.find("nan"));
    EXPECT_EQ(std::string::npos, result.output.find("inf"));
}

} // namespace
