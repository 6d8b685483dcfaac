#include "common/tw_clock.h"
#include "tests/tarnwell/program_runner.h"
#include "tests/tarnwell/running_program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <random>
#include <set>
#include <sstream>
#include <thread>

// Collections that are killed at any moment: all but the last second is in the file.

namespace {

namespace fs = std::filesystem;
using namespace kr_test;
using std::chrono::milliseconds;

struct Victim {
    std::string file;
    milliseconds lives;
    std::unique_ptr<RunningProgram> program{};
    pw_u64_t killedAt = 0; ///< ticks of the clock that collections have, too
};

constexpr unsigned kVictims = 10;
constexpr double kIntervalSeconds = 0.01;

void waitUntilItSaves(const Victim& victim) {
    std::error_code missing;
    while (victim.program->isRunning() &&
           (!fs::exists(victim.file) || fs::file_size(victim.file, missing) == 0)) {
        std::this_thread::sleep_for(milliseconds(5));
    }
    ASSERT_TRUE(victim.program->isRunning()) << victim.file;
}

/// All of them at once, so that the test takes as long as the longest.
std::vector<Victim> killedCollections() {
    std::mt19937 random(std::random_device{}());
    std::uniform_int_distribution<int> moment(200, 2000);
    std::vector<Victim> victims;
    for (unsigned i = 0; i < kVictims; ++i) {
        victims.push_back({"killed" + std::to_string(i) + ".twc", milliseconds(moment(random))});
    }
    std::sort(victims.begin(), victims.end(),
              [](const Victim& left, const Victim& right) { return left.lives < right.lives; });
    for (Victim& victim : victims) {
        victim.program = std::make_unique<RunningProgram>(std::vector<std::string>{
            "--feature", "cpu", "--interval", "10", "--quiet", "--save", victim.file});
    }
    for (const Victim& victim : victims) {
        waitUntilItSaves(victim);
    }
    const auto begin = std::chrono::steady_clock::now();
    for (Victim& victim : victims) {
        std::this_thread::sleep_until(begin + victim.lives);
        victim.killedAt = pwr::TWQPCClock().getTimestamp();
        victim.program->kill();
    }
    return victims;
}

/// The ticks at which something was read, from the first field of each line.
std::set<pw_u64_t> ticksOf(const std::string& exported) {
    std::set<pw_u64_t> ticks;
    std::istringstream lines(exported);
    std::string line;
    std::getline(lines, line);
    while (std::getline(lines, line)) {
        ticks.insert(std::stoull(line));
    }
    return ticks;
}

TEST(Killed, aCollectionIsReadUpToItsLastSecond) {
    const ScratchFolder scratch;
    const double ticksPerSecond = static_cast<double>(pwr::TWQPCClock().getFrequency()) * 1e6;
    for (const Victim& victim : killedCollections()) {
        SCOPED_TRACE(victim.file + " lived for " + std::to_string(victim.lives.count()) + " ms");
        const ProgramResult report = runProgram(scratch, {"--input", victim.file});
        EXPECT_EQ(4, report.exitCode) << report.errors;
        EXPECT_NE(std::string::npos, report.output.find("The collection was not closed")) << report.output;
        const ProgramResult exported = runProgram(scratch, {"export", victim.file, "--csv"});
        EXPECT_EQ(4, exported.exitCode) << exported.errors;
        const std::set<pw_u64_t> ticks = ticksOf(exported.output);
        if (ticks.empty()) {
            EXPECT_LT(victim.lives.count(), 1500) << "nothing of it was saved";
            continue;
        }
        const double kept = static_cast<double>(*ticks.rbegin() - *ticks.begin()) / ticksPerSecond;
        EXPECT_LE(*ticks.rbegin(), victim.killedAt);
        EXPECT_LT(static_cast<double>(victim.killedAt - *ticks.rbegin()) / ticksPerSecond, 1.5);
        // A busy test machine misses polls, but what was read is there without holes.
        EXPECT_GT(static_cast<double>(ticks.size()), kept / kIntervalSeconds / 4);
    }
}

} // namespace
