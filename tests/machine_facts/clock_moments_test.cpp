#include "tarnwell/clock_moments.h"

#include "tarnwell/told_clock.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

TEST(ClockMoments, readsEveryClockWithTheDefaultClock) {
    const pwr::TWQPCClock clock;
    const tarnwell::ClockMoments moments(clock);
    const pw_u64_t before = clock.getTimestamp();
    const auto begin = moments.take();
    const pw_u64_t between = clock.getTimestamp();
    const auto end = moments.take();
    const pw_u64_t after = clock.getTimestamp();
    ASSERT_EQ(3U, begin.size());
    ASSERT_EQ(3U, end.size());
    const char* const names[] = {"QPC", "NANO", "TSC"};
    for (std::size_t i = 0; i < 3; ++i) {
        SCOPED_TRACE(names[i]);
        EXPECT_EQ(names[i], begin[i].clockName);
        EXPECT_EQ(clock.getUUID(), begin[i].defaultClockUUID);
        EXPECT_LE(before, begin[i].defaultClockValue);
        EXPECT_LE(begin[i].defaultClockValue, between);
        EXPECT_LE(between, end[i].defaultClockValue);
        EXPECT_LE(end[i].defaultClockValue, after);
        EXPECT_GT(end[i].clockFrequency, 0.0F);
        EXPECT_TRUE(std::isfinite(end[i].clockFrequency));
    }
    EXPECT_EQ(begin[0].clockValue, begin[0].defaultClockValue);
    EXPECT_EQ(clock.getFrequency(), begin[0].clockFrequency);
    EXPECT_GT(end[2].clockValue, begin[2].clockValue);
}

/// Counts as a clock of the system, but stands still until it is told the time.
class StandingClock : public pwr::TWClockSource {
public:
    StandingClock() : TWClockSource(pwr::TWQPCClock().getUUID(), "QPC", "") {}
    float getFrequency() const override { return 1.0F; }
    pw_u64_t getTimestamp() const override { return now; }
    pw_u64_t now = 1;
};

TEST(ClockMoments, believesTheToldFrequencyUntilItCanMeasure) {
    StandingClock clock;
    const tarnwell::ClockMoments moments(clock, 1e9);
    EXPECT_EQ(1e9F, moments.take()[2].clockFrequency);
    clock.now += 90'000; // microseconds
    EXPECT_EQ(1e9F, moments.take()[2].clockFrequency);
    clock.now += 1'000'000'000'000;
    const float measured = moments.take()[2].clockFrequency;
    EXPECT_GT(measured, 0.0F);
    EXPECT_LT(measured, 1e6F);
}

TEST(ClockMoments, relatesNoClockOfThisSystemToToldTime) {
    tarnwell::ToldClock clock;
    clock.tell(1500);
    const auto syncs = tarnwell::ClockMoments(clock).take();
    ASSERT_EQ(1U, syncs.size());
    EXPECT_EQ("TOLD", syncs[0].clockName);
    EXPECT_EQ(1000.0F, syncs[0].clockFrequency);
    EXPECT_EQ(1500U, syncs[0].clockValue);
    EXPECT_EQ(1500U, syncs[0].defaultClockValue);
}

} // namespace
