#include "tests/tarnwell/program_runner.h"

#include <gtest/gtest.h>

// How the clocks of a collection are related to each other, by told time.

namespace {

using namespace kr_test;

/// The default clock's ticks at each note of the clocks, as info prints them.
std::vector<std::string> notedTicks(const std::string& document) {
    const std::string key = "\"default_clock_ticks\": ";
    std::vector<std::string> ticks;
    for (std::size_t at = document.rfind("\n  \"clocks\"");
         (at = document.find(key, at)) != std::string::npos;) {
        at += key.size();
        ticks.push_back(document.substr(at, document.find('\n', at) - at));
    }
    return ticks;
}

TEST(Clocks, areNotedAtTheBeginOnceAMinuteAndAtTheEnd) {
    const ScratchFolder scratch;
    const std::string machine = (dataFolder() / "machines" / "one_processor.bundle").string();
    const ProgramResult run = runProgram(scratch, {"--machine", machine, "--feature", "cpu", "--interval",
                                                   "25000", "--time", "190", "--save", "long.twc"});
    ASSERT_EQ(0, run.exitCode) << run.errors;
    const ProgramResult info = runProgram(scratch, {"info", "long.twc", "--json"});
    // At the first round a minute after the note before: at 75 s and 150 s.
    const std::vector<std::string> expected = {"1000000000", "76000000000", "151000000000", "191000000000"};
    EXPECT_EQ(expected, notedTicks(info.output)) << info.output;
}

} // namespace
