#include "tarnwell/poll_schedule.h"

#include "tarnwell/drain_schedule.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

struct Step {
    std::uint64_t now; ///< when the reads were done
    std::uint64_t deadline;
    std::uint64_t missed; ///< so far
};

TEST(PollSchedule, keepsAbsoluteTicksAndCountsWhatPassed) {
    struct Case {
        const char* name;
        std::uint64_t stop;
        std::vector<Step> steps;
    };
    const std::vector<Case> cases = {
        {"in time", 1350, {{1000, 1100, 0}, {1101, 1200, 0}, {1205, 1300, 0}, {1310, 1350, 0}}},
        {"late within the tick does not drift",
         1400,
         {{1000, 1100, 0}, {1199, 1200, 0}, {1299, 1300, 0}, {1301, 1400, 0}}},
        {"one tick passed", 2000, {{1000, 1100, 0}, {1250, 1300, 1}}},
        {"exactly on the next tick counts it as passed", 2000, {{1000, 1100, 0}, {1200, 1300, 1}}},
        {"woken early does not poll a tick twice", 2000, {{1000, 1100, 0}, {1099, 1200, 0}}},
        {"passed up to the stop", 1450, {{1000, 1100, 0}, {1900, 1450, 3}}},
        {"the stop falls on a tick", 1200, {{1000, 1100, 0}, {1105, 1200, 0}}},
        {"the stop comes before the first tick", 1050, {{1000, 1050, 0}}},
        {"no stop known", UINT64_MAX, {{1000, 1100, 0}, {100000, 100100, 989}}},
    };
    for (const Case& scheduleCase : cases) {
        SCOPED_TRACE(scheduleCase.name);
        tarnwell::PollSchedule schedule(1000, 100, scheduleCase.stop);
        for (const Step& step : scheduleCase.steps) {
            EXPECT_EQ(step.deadline, schedule.nextDeadline(step.now));
            EXPECT_EQ(step.missed, schedule.missed());
        }
        EXPECT_EQ(scheduleCase.steps.back().deadline == scheduleCase.stop,
                  schedule.isStop(scheduleCase.steps.back().deadline));
    }
}

TEST(DrainSchedule, drainsBetweenTheTicksOfLongIntervals) {
    const Step steps[] = {
        {1000, 1050, 2000}, // a step after the begin
        {1051, 1100, 2000}, // absolute: does not drift
        {1900, 1900, 2000}, // late: at once, and nothing is made up for
        {1901, 1950, 2000}, {1951, 2000, 2000}, {2010, 2000, 2000},
    };
    tarnwell::DrainSchedule schedule(50);
    schedule.begin(1000);
    for (const auto& [now, next, at] : steps) {
        EXPECT_EQ(next, schedule.advance(now, at));
        EXPECT_EQ(next, schedule.next());
    }
    EXPECT_EQ(0U, schedule.advance(3000, 0)); // a round of now
    EXPECT_EQ(5000U, schedule.advance(5000, UINT64_MAX));
    EXPECT_EQ(UINT64_MAX, tarnwell::DrainSchedule(UINT64_MAX).advance(1, UINT64_MAX));
    EXPECT_EQ(2000U, tarnwell::DrainSchedule(UINT64_MAX).advance(1, 2000)); // only at the ticks
}

} // namespace
