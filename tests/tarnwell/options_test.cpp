#include "common/pw_utils.h"
#include "tests/tarnwell/program_runner.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>
#include <sstream>

// What every option does, or says when it can do nothing here.

namespace {

namespace fs = std::filesystem;
using namespace kr_test;
using testing::HasSubstr;

const bool kOnWindows = pwr::PathOps::getPathSeparator() == '\\';
const std::string kEcho = kOnWindows ? "cmd /c echo 'it runs'" : "sh -c 'echo it runs'";

using Words = std::vector<std::string>;

std::string machine() {
    return (dataFolder() / "machines" / "one_processor.bundle").string();
}

/// Runs with the processor times of a recorded machine: one second, a moment every 100 ms.
ProgramResult runRecorded(const ScratchFolder& scratch, const Words& more) {
    Words arguments = {"--machine", machine(), "--feature", "cpu"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return runProgram(scratch, arguments);
}

/// The files that a run left, but for its own outputs; the time in the name of a saved collection as "TIME".
std::string filesOf(const ScratchFolder& scratch) {
    std::set<std::string> kinds;
    for (const auto& entry : fs::directory_iterator(scratch.path())) {
        std::string name = entry.path().filename().string();
        if (name.rfind("tarnwell-", 0) == 0) {
            name = "tarnwell-TIME.twc";
        }
        if (entry.path().extension() == ".csv") {
            name = name.substr(0, name.find('_')) + "_*.csv";
        }
        if (name != "stdout" && name != "stderr") {
            kinds.insert(name);
        }
    }
    std::string text;
    for (const std::string& kind : kinds) {
        text += (text.empty() ? "" : " ") + kind;
    }
    return text;
}

struct EffectCase {
    Words arguments;
    int exitCode;
    std::string output; ///< stands in the standard output; "" for nothing at all there
    std::string errors;
    std::string files;
};

const std::string kUsual = "tarnwell-TIME.twc";

std::vector<EffectCase> effectCases() {
    return {
        {{"--print-fms"}, 0, "6.85.4\n", "", ""},
        {{"--version"}, 0, "tarnwell ", "", ""},
        {{"--help-json"}, 0, "\"options\"", "", ""},
        {{"--time", "0.5"}, 0, "4 polls", "Saved: ", kUsual},
        {{"-t", "0.5", "-i250"}, 0, "1 poll;", "", kUsual},
        {{"--interval=200"}, 0, "Interval   200 ms", "", kUsual},
        {{"--startdelay", "0.3"}, 0, "6 polls", "", kUsual},
        {{"--max-detail", "--quiet"}, 0, "9 polls", "", kUsual},
        {{"--no-save"}, 0, "9 polls", "", ""},
        {{"--save", "a.twc"}, 0, "9 polls", "Saved: a.twc", "a.twc"},
        {{"--save", "a.twc", "--overwrite"}, 0, "9 polls", "Saved: a.twc", "a.twc"},
        {{"--no-post-processing"}, 0, "", "Saved: ", kUsual},
        {{"--no-post-processing", "-o", "run"}, 0, "", "Saved: run.twc", "run.twc"},
        {{"--polling"}, 0, "9 polls", "--polling has no effect: counters are always polled", kUsual},
        {{"--auto-connected-standby"}, 0, "9 polls", "let a program do that", kUsual},
        {{"--poll-processor", "0"}, 0, "9 polls", "", kUsual},
        {{"--program", kEcho}, 0, "it runs", "", kUsual},
        {{"--program", kEcho, "--program-delay", "0.2"}, 0, "it runs", "", kUsual},
        // The collection had begun, so it is kept and reported, up to the moment when the program should have come.
        {{"--program", "no-such-program", "--program-delay", "0.2"}, 127, "2 polls;", "cannot start", kUsual},
        {{"--program", "no-such-program"}, 127, "", "cannot start no-such-program", ""},
        {{"--result", "csv"}, 0, "", "", "TarnwellOutput_*.csv " + kUsual},
        {{"--result", "text"}, 0, "9 polls", "", kUsual},
        {{"--result", "text", "--output", "run"}, 0, "9 polls", "", "run.twc run.txt"},
        {{"--result", "text", "--result", "csv"},
         0,
         "9 polls",
         "",
         "TarnwellOutput.txt TarnwellOutput_*.csv " + kUsual},
        {{"--result", "none"}, 0, "", "Saved: ", kUsual},
        {{"--result", "xml"}, 2, "", "unknown form of results \"xml\"; there are: csv, none, text", ""},
        {{"--result-slice-range", "300-700"}, 0, "from 0.300 s to 0.700 s, 5 of 11 readings", "", kUsual},
        {{"--result-slice-range", "5000-"}, 3, "0 of 11 readings", "no reading is in it", kUsual},
        {{"--log", "log.txt", "--polling"}, 0, "9 polls", "", "log.txt " + kUsual},
        {{"--log", "no-such-folder/log.txt"}, 1, "", "no-such-folder/log.txt", ""},
        {{"--feature", "gbe:gbe-int=2000"}, 3, "Missing: gbe is not", "gbe-int has no effect", kUsual},
        {{"--feature", "cxh"}, 3, "Missing: cxh is not", "cxh is not available: no collector", kUsual},
        {{"--hardware-config", "none.cfg"}, 1, "", "none.cfg", ""},
        {{"--output-config", "none.cfg"}, 1, "", "none.cfg", ""},
        {{"--add-output-config", "none.cfg"}, 1, "", "none.cfg", ""},
    };
}

TEST(Options, takeEffectOrSayWhyNot) {
    for (const EffectCase& c : effectCases()) {
        SCOPED_TRACE(testing::PrintToString(c.arguments));
        const ScratchFolder scratch;
        const ProgramResult result = runRecorded(scratch, c.arguments);
        EXPECT_EQ(c.exitCode, result.exitCode) << result.errors;
        EXPECT_THAT(result.output, HasSubstr(c.output)) << result.errors;
        EXPECT_EQ(c.output.empty(), result.output.empty()) << result.output;
        EXPECT_THAT(result.errors, HasSubstr(c.errors));
        EXPECT_EQ(c.files, filesOf(scratch));
        if (fs::exists("log.txt")) {
            EXPECT_THAT(readFile("log.txt"), HasSubstr(": --machine "));
            EXPECT_THAT(readFile("log.txt"), HasSubstr(result.errors));
        }
    }
}

TEST(Options, everyOneIsTriedSomewhere) {
    std::set<std::string> tried = {"--help", "--input", "--machine", "--endpoints"}; // by other tests
    for (const EffectCase& c : effectCases()) {
        for (const std::string& word : c.arguments) {
            tried.insert(word.substr(0, word.find('=')));
        }
    }
    const ScratchFolder scratch;
    const auto json = nlohmann::json::parse(runProgram(scratch, {"--help-json"}).output);
    for (const auto& option : json["options"]) {
        const std::string name = option["name"];
        EXPECT_TRUE(name[0] != '-' || tried.count(name) != 0) << name << " is tried by no test";
    }
}

TEST(Options, optionsOfFeaturesAreKnownAndAnswered) {
    const ScratchFolder scratch;
    const auto json = nlohmann::json::parse(runProgram(scratch, {"--help-json"}).output);
    std::size_t count = 0;
    for (const auto& option : json["options"]) {
        const std::string name = option["name"];
        if (name[0] == '-') {
            continue;
        }
        ++count;
        const char* feature = name.find("tcss") == 0 || name == "disable-iom-wakeup" ? "tcss"
                              : name == "gbe-int"                                    ? "gbe"
                              : name == "pcie-lpm" || name == "no-device-filter" || name == "acpi-dstate"
                                  ? "pcie"
                                  : "cxh";
        const std::string value = option.contains("arg") ? "=1" : "";
        // Collecting would not say more: a wrong use ends here as well.
        const ProgramResult result =
            runProgram(scratch, {"--feature", std::string(feature) + ":" + name + value, "--print-fms",
                                 "--machine", machine()});
        EXPECT_THAT(result.errors, HasSubstr(name + " has no effect: no collector")) << name;
    }
    EXPECT_EQ(16U, count);
}

TEST(Options, whatIsWrongOrDoesNotGoTogetherIsNamed) {
    const std::vector<std::pair<Words, const char*>> cases = {
        {{"--intervall", "5"}, "unknown option --intervall; did you mean --interval?"},
        {{"--hlep"}, "did you mean --help?"},
        {{"-x"}, "unknown option -x"},
        {{"--entirely-different"}, "unknown option --entirely-different\n"},
        {{"docter"}, "unknown subcommand \"docter\"; did you mean doctor?"},
        {{"make"}, "unknown subcommand \"make\"; a command to run stands behind --"},
        {{"doctor", "--save", "x"}, "unknown option --save of doctor"},
        {{"--save", "x", "doctor"}, "--save does not go with doctor"},
        {{"verify"}, "verify needs FILE"},
        {{"verify", "a", "b"}, "verify does not expect \"b\""},
        {{"completions", "csh"}, "give bash, zsh or fish"},
        {{"--interval"}, "--interval needs a value: --interval <milliseconds>"},
        {{"--time", "--quiet"}, "--time needs a value"},
        {{"--quiet=1"}, "--quiet takes no value"},
        {{"--time", "1", "-t", "2"}, "--time is given twice"},
        {{"--program", "a 'b"}, "quotes are closed"},
        {{"--program", " "}, "give the command to run"},
        {{"--program", "a", "--", "b"}, "two commands"},
        {{"--feature", "--", "b"}, "doctor runs no command"},
        {{"--feature", "--save", "x"}, "--save does not go with --feature without a name"},
        {{"--machine", ""}, "--machine \"\": give a root folder"},
        {{"--output-config="}, "--output-config \"\": give a configuration file"},
        {{"--program-delay", "1"}, "there is no program"},
        {{"--program-delay", "2", "--time", "1", "--", "x"}, "over (--time) before the program starts"},
        {{"--startdelay", "-1"}, "--startdelay -1: give a number of seconds"},
        {{"--result-slice-range", "5"}, "--result-slice-range 5: give two numbers"},
        {{"--result-slice-range", "-"}, "give two numbers"},
        {{"--result-slice-range", "7-3"}, "the smaller first"},
        {{"--result-slice-range", "1-2-3"}, "give two numbers"},
        {{"--result", ""}, "--result \"\""},
        {{"--result", "none", "--result", "csv"}, "goes with no other form"},
        {{"--result", "none", "--no-save"}, "nothing would be left"},
        {{"--no-post-processing", "--no-save"}, "nothing would be left"},
        {{"--no-post-processing", "--result-slice-range", "1-"}, "leaves out"},
        {{"--poll-processor", "x"}, "--poll-processor x: give a processor's number"},
        {{"--poll-processor", "1:64"}, "a number below 64"},
        {{"--feature", ""}, "--feature \"\": give the name of a feature"},
        {{"--feature", "cxh:nonsense"}, "give one of the options of cxh: cxh-int, "},
        {{"--feature", "gbe:gbe-int"}, "give gbe-int=<milliseconds>"},
        {{"--feature", "gbe:gbe-int=0"}, "give gbe-int=<milliseconds>"},
        {{"--feature", "pcie:acpi-dstate=1"}, "give acpi-dstate without a value"},
        {{"--input", "x", "--program", "y"}, "--program: makes no sense with --input"},
        {{"--input", "x", "--startdelay", "1"}, "--startdelay: makes no sense with --input"},
        {{"--input", "x", "--result", "none"}, "nothing would be left"},
        {{"--log", "a", "--save", "./a"}, "--log a would replace what --save names"},
        {{"--log", "a", "verify", "a"}, "--log a would replace what FILE names"},
        {{"export", "a", "--csv", "--jsonl"}, "one of --csv and --jsonl"},
    };
    const ScratchFolder scratch;
    for (const auto& [arguments, text] : cases) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        const ProgramResult result = runProgram(scratch, arguments);
        EXPECT_EQ(2, result.exitCode);
        EXPECT_EQ("", result.output);
        EXPECT_THAT(result.errors, HasSubstr(text));
        EXPECT_EQ("", filesOf(scratch));
    }
}

/// The value of one counter at a moment, from the raw readings.
long long rawValue(const std::string& csv, const std::string& moment, const std::string& counter) {
    std::istringstream lines(csv);
    for (std::string line; std::getline(lines, line);) {
        if (line.find("," + moment + ",") != std::string::npos && line.find(counter) != std::string::npos) {
            return std::stoll(line.substr(line.rfind(',') + 1));
        }
    }
    ADD_FAILURE() << counter << " at " << moment << " is not in\n" << csv.substr(0, 2000);
    return 0;
}

TEST(Options, aSliceIsReportedAsACollectionOfItsOwn) {
    const ScratchFolder scratch;
    const std::string file = (dataFolder() / "saved_files" / "linux.twc").string();
    const std::string csv = runProgram(scratch, {"export", file, "--csv"}).output;
    const std::string counter = ",NETWORK-BYTES,network,wwan0,Received,";
    const long long difference =
        rawValue(csv, "0.700000000", counter) - rawValue(csv, "0.500000000", counter);
    const Words arguments = {"--input", file,       "--feature", "network", "--result-slice-range",
                             "450-750", "--result", "csv"};
    const ProgramResult sliced = runProgram(scratch, arguments);
    EXPECT_EQ(0, sliced.exitCode) << sliced.errors;
    std::string tables;
    for (const auto& entry : fs::directory_iterator(scratch.path())) {
        tables += entry.path().extension() == ".csv" ? readFile(entry.path()) : std::string();
    }
    EXPECT_NE(0, difference);
    EXPECT_TRUE(std::regex_search(
        tables, std::regex("wwan0,Received,[0-9.]+," + std::to_string(difference) + "[\r\n]")))
        << tables;

    // The same part, live and from the file; and all of it is what it is without a slice.
    const Words slice = {"--result-slice-range", "250-750"};
    const std::string live = runRecorded(scratch, {slice[0], slice[1], "--save", "a.twc"}).output;
    EXPECT_EQ(live, runProgram(scratch, {"--input", "a.twc", slice[0], slice[1]}).output);
    std::string all = runProgram(scratch, {"--input", "a.twc", "--result-slice-range", "0-"}).output;
    const std::size_t note = all.find("Only a part of the collection");
    ASSERT_NE(std::string::npos, note);
    all.erase(note, all.find('\n', note) + 1 - note);
    EXPECT_EQ(runProgram(scratch, {"--input", "a.twc"}).output, all);
    EXPECT_NE(live, all);
}

TEST(Options, helpAndJsonAreTheExpectedText) {
    const ScratchFolder scratch;
    const std::vector<std::pair<Words, const char*>> cases = {{{"--help"}, "help.txt"},
                                                              {{"export", "-h"}, "help_export.txt"},
                                                              {{"--nonsense", "--help"}, "help.txt"},
                                                              {{"--help-json"}, "options.json"}};
    for (const auto& [arguments, name] : cases) {
        const ProgramResult result = runProgram(scratch, arguments);
        EXPECT_EQ(0, result.exitCode);
        EXPECT_EQ("", result.errors);
        const fs::path golden = dataFolder() / "tarnwell" / "options" / name;
        if (!pwr::pw_getenv("UPDATE_CASES").empty()) {
            writeFile(golden, result.output);
        }
        EXPECT_EQ(readFile(golden), result.output) << name;
    }
}

/// What a shell command prints, its errors included; the shell is POSIX.
std::string shell(const ScratchFolder& scratch, const std::string& command) {
    const std::string file = (scratch.path() / "shell").string();
    EXPECT_NE(-1, std::system(("(" + command + ") > '" + file + "' 2>&1").c_str()));
    return readFile(file);
}

bool hasProgram(const ScratchFolder& scratch, const char* name) {
    return !shell(scratch, std::string("command -v ") + name).empty();
}

TEST(Completions, bashProposesWhatMayStandThere) {
    const ScratchFolder scratch;
    if (kOnWindows || !hasProgram(scratch, "bash")) {
        GTEST_SKIP() << "no bash here";
    }
    writeFile("script", runProgram(scratch, {"completions", "bash"}).output);
    fs::create_directory("folder");
    writeFile("folder/saved.twc", "");
    const std::vector<std::pair<const char*, const char*>> cases = {
        {"--no-s", "--no-save "},
        {"--time 5 --ove", "--overwrite "},
        {"--result ", "text csv none "},
        {"--result = c", "csv "},
        {"--interval ", ""},
        {"--input folder/s", "folder/saved.twc "},
        {"doc", "doctor "},
        {"--output doctor --no-p", "--no-post-processing "},
        {"--output = doctor --no-p", "--no-post-processing "},
        {"completions ", "bash zsh fish --help --log "},
        {"verify folder/", "folder/saved.twc "},
        {"export --j", "--jsonl "},
        {"-- bas", nullptr},
    };
    for (const auto& [line, expected] : cases) {
        std::string command = "bash -c 'source ./script; words=(tarnwell";
        std::istringstream words(line);
        for (std::string word; words >> word;) {
            command += " " + word;
        }
        command += std::string(line).back() == ' ' ? " \"\");" : ");";
        command += " COMP_WORDS=(\"${words[@]}\"); COMP_CWORD=$((${#words[@]} - 1)); _tarnwell;"
                   " for reply in \"${COMPREPLY[@]}\"; do printf \"%s \" \"$reply\"; done'";
        const std::string reply = shell(scratch, command);
        if (expected == nullptr) {
            EXPECT_THAT(reply, HasSubstr("bash ")) << line;
        } else {
            EXPECT_EQ(expected, reply) << line;
        }
    }
}

TEST(Completions, theTextsAreSoundToTheirReaders) {
    const ScratchFolder scratch;
    struct Case {
        Words arguments;
        const char* program;
        const char* check; ///< prints nothing for a sound file
    };
    const std::vector<Case> cases = {{{"completions", "bash"}, "bash", "bash -n text"},
                                     {{"completions", "zsh"}, "zsh", "zsh -n text"},
                                     {{"completions", "fish"}, "fish", "fish --no-execute text"},
                                     {{"manual"}, "groff", "groff -man -Tascii -ww -z text"}};
    for (const Case& c : cases) {
        const ProgramResult result = runProgram(scratch, c.arguments);
        EXPECT_EQ(0, result.exitCode);
        EXPECT_THAT(result.output, HasSubstr("tarnwell"));
        EXPECT_FALSE(std::regex_search(result.output, std::regex("@[a-z]+@"))) << "not filled in";
        writeFile("text", result.output);
        if (!kOnWindows && hasProgram(scratch, c.program)) {
            EXPECT_EQ("", shell(scratch, c.check));
        }
    }
}

} // namespace
