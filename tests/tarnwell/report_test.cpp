#include "common/pw_utils.h"
#include "tests/tarnwell/program_runner.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <sstream>

// Whole reports of recorded machines. A case is a file: lines "key: value", then "report:" and the expected
// standard output to the end. UPDATE_CASES=1 writes what came out; the difference is for the reviewer.

namespace {

namespace fs = std::filesystem;
using namespace kr_test;

struct ReportCase {
    fs::path file;
    std::string head; ///< everything in front of the report
    std::map<std::string, std::string> facts;
    std::string report;
};

ReportCase readCase(const fs::path& file) {
    ReportCase result;
    result.file = file;
    const std::string text = readFile(file);
    const std::string mark = "report:\n";
    const std::size_t at = text.find(mark);
    result.head = text.substr(0, at + mark.size());
    result.report = at == std::string::npos ? std::string() : text.substr(at + mark.size());
    std::istringstream lines(result.head);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t colon = line.find(": ");
        if (colon != std::string::npos) {
            result.facts[line.substr(0, colon)] = line.substr(colon + 2);
        }
    }
    return result;
}

std::vector<ReportCase> allCases() {
    std::vector<ReportCase> cases;
    for (const auto& entry : fs::directory_iterator(dataFolder() / "tarnwell" / "cases")) {
        cases.push_back(readCase(entry.path()));
    }
    std::sort(cases.begin(), cases.end(), [](const auto& a, const auto& b) { return a.file < b.file; });
    return cases;
}

std::vector<std::string> argumentsOf(const ReportCase& reportCase, const ScratchFolder& scratch) {
    // The report shows the arguments, so the machine is named without its folder.
    scratch.fetch(fs::path("machines") / reportCase.facts.at("machine"));
    std::vector<std::string> arguments = {"--machine", reportCase.facts.at("machine")};
    std::istringstream words(reportCase.facts.at("arguments"));
    for (std::string word; words >> word;) {
        arguments.push_back(word);
    }
    return arguments;
}

TEST(Report, ofRecordedMachinesIsTheExpectedText) {
    const std::vector<ReportCase> cases = allCases();
    ASSERT_FALSE(cases.empty());
    for (const ReportCase& reportCase : cases) {
        SCOPED_TRACE(reportCase.file.filename().string());
        const ScratchFolder scratch;
        const ProgramResult result = runProgram(scratch, argumentsOf(reportCase, scratch));
        EXPECT_EQ(std::stoi(reportCase.facts.at("exit")), result.exitCode) << result.errors;
        if (!pwr::pw_getenv("UPDATE_CASES").empty()) {
            writeFile(reportCase.file, reportCase.head + result.output);
            continue;
        }
        EXPECT_EQ(reportCase.report, result.output);
        const std::string saved = scratch.savedFile();
        EXPECT_NE(std::string::npos, result.errors.find("Saved: " + saved + " (")) << result.errors;
        const ProgramResult replay = runProgram(scratch, {"--input", saved});
        EXPECT_EQ(0, replay.exitCode) << replay.errors;
        EXPECT_EQ(result.output, replay.output);
        EXPECT_EQ("", replay.errors);
    }
}

TEST(Report, ofFilesSavedOnEitherSystemIsTheSame) {
    unsigned count = 0;
    for (const auto& entry : fs::directory_iterator(dataFolder() / "saved_files")) {
        if (entry.path().extension() != ".twc") {
            continue;
        }
        SCOPED_TRACE(entry.path().filename().string());
        ++count;
        const ScratchFolder scratch;
        const ProgramResult replay = runProgram(scratch, {"--input", entry.path().string()});
        EXPECT_EQ(0, replay.exitCode) << replay.errors;
        EXPECT_EQ(readFile(fs::path(entry.path()).replace_extension(".report")), replay.output);
    }
    EXPECT_EQ(3U, count);
}

TEST(Report, goesToFilesAsItGoesToTheStandardOutput) {
    const ScratchFolder scratch;
    const std::string prefix = (scratch.path() / "run").string();
    const std::vector<ReportCase> cases = allCases();
    ASSERT_FALSE(cases.empty());
    std::vector<std::string> arguments = argumentsOf(cases.front(), scratch);
    arguments.insert(arguments.end(), {"--output", prefix});
    const ProgramResult result = runProgram(scratch, arguments);
    EXPECT_FALSE(result.output.empty());
    EXPECT_EQ(result.output, readFile(prefix + ".txt"));

    // And once more from the saved collection, under other names.
    const ProgramResult replay = runProgram(scratch, {"--input", prefix + ".twc", "--output", "again"});
    EXPECT_EQ(0, replay.exitCode) << replay.errors;
    unsigned csvFiles = 0;
    for (const auto& entry : fs::directory_iterator(scratch.path())) {
        const std::string name = entry.path().filename().string();
        EXPECT_EQ(std::string::npos, name.find(".part")) << "left over: " << entry.path();
        const bool isTable = entry.path().extension() == ".csv" && name.rfind("run", 0) == 0;
        csvFiles += isTable ? 1U : 0U;
        if (isTable || name == "run.txt") {
            EXPECT_EQ(readFile(entry.path()), readFile(scratch.path() / ("again" + name.substr(3)))) << name;
        }
    }
    EXPECT_GT(csvFiles, 0U);
    EXPECT_FALSE(fs::exists("again.twc"));
}

} // namespace
