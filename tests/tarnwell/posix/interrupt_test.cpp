#include "tests/tarnwell/program_runner.h"
#include "tests/tarnwell/running_program.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <sys/wait.h>
#include <thread>

// Ctrl-C ends a collection, and all that was collected is saved and reported.

namespace {

namespace fs = std::filesystem;
using namespace kr_test;

/// Blocks until the file is there and not empty: the collection has begun.
void waitForFile(const RunningProgram& program, const std::string& file) {
    std::error_code missing;
    while (program.isRunning() && (!fs::exists(file) || fs::file_size(file, missing) == 0)) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    ASSERT_TRUE(program.isRunning()) << file;
}

/// Leaves the process for its owner to collect.
int exitCodeOf(const RunningProgram& program) {
    siginfo_t info{};
    EXPECT_EQ(0, waitid(P_PID, static_cast<id_t>(program.number()), &info, WEXITED | WNOWAIT));
    EXPECT_EQ(CLD_EXITED, info.si_code);
    return info.si_status;
}

TEST(Interrupted, aCollectionIsWhole) {
    struct Case {
        std::vector<std::string> command;
        int exitCode;
    };
    const Case cases[] = {
        {{}, 0},
        {{"--time", "600"}, 0},
        {{"--", "sleep", "600"}, 128 + SIGINT}, // the command is told, because no terminal did that
    };
    for (const Case& c : cases) {
        const ScratchFolder scratch;
        std::vector<std::string> arguments = {"--feature", "cpu",      "--interval", "10",    "--quiet",
                                              "--save",    "some.twc", "--output",   "direct"};
        arguments.insert(arguments.end(), c.command.begin(), c.command.end());
        const RunningProgram program(arguments);
        waitForFile(program, "some.twc");
        for (int twice = 0; twice < 2; ++twice) { // as launchers do, to the process and to its group
            ASSERT_EQ(0, kill(static_cast<pid_t>(program.number()), SIGINT));
        }
        EXPECT_EQ(c.exitCode, exitCodeOf(program));
        const ProgramResult verified = runProgram(scratch, {"verify", "some.twc"});
        EXPECT_EQ(0, verified.exitCode) << verified.output;
        const ProgramResult again = runProgram(scratch, {"--input", "some.twc", "--output", "again"});
        EXPECT_EQ(0, again.exitCode) << again.errors;
        const std::string report = readFile("direct.txt");
        EXPECT_NE(std::string::npos, report.find("interval achieved")) << report;
        EXPECT_EQ(report, readFile("again.txt"));
    }
}

} // namespace
