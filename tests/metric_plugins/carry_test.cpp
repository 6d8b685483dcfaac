#include "plugins/metrics/residency_carry/carry.h"

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <string>

using namespace pwr;

namespace {

// Feeds steps to a carry as a message does: intervals are taken when final, joined when held too long.
class Line {
public:
    Line(std::size_t states, bool isCovering) : m_carry(states, isCovering) { m_carry.begin(0); }

    void step(std::uint64_t tick, std::vector<std::uint64_t> booked) {
        m_carry.step(tick, booked);
        while (m_carry.isOldestFinal() || m_carry.held() > ResidencyCarry::MAX_HELD) {
            if (!m_carry.isOldestFinal() && !m_carry.isOldestShown()) {
                m_carry.mergeOldest();
            } else {
                take_i();
            }
        }
    }
    void end() {
        m_carry.end();
        while (m_carry.held() > 0) {
            take_i();
        }
    }
    const ResidencyCarry& carry() const { return m_carry; }

    struct Taken {
        std::uint64_t end, length, rest, notBooked;
        std::vector<std::uint64_t> states;
    };
    std::vector<Taken> taken;

    // "100: 60 40 r0 n0" for each interval: its end, its states, rest and what was not booked.
    std::string text() const {
        std::string all;
        for (const Taken& t : taken) {
            all += (all.empty() ? "" : ", ") + std::to_string(t.end) + ":";
            for (const std::uint64_t ticks : t.states) {
                all += " " + std::to_string(ticks);
            }
            all += t.rest > 0 ? " r" + std::to_string(t.rest) : "";
            all += t.notBooked > 0 ? " n" + std::to_string(t.notBooked) : "";
        }
        return all;
    }

private:
    void take_i() {
        const ResidencyCarry::Interval interval = m_carry.takeOldest();
        taken.push_back({interval.end,
                         interval.length,
                         interval.rest,
                         interval.notBooked,
                         {interval.states.begin(), interval.states.end()}});
    }

    ResidencyCarry m_carry;
};

using Steps = std::vector<std::vector<std::uint64_t>>;

std::string run(bool isCovering, const Steps& steps) {
    Line line(steps.front().size(), isCovering);
    std::uint64_t tick = 0;
    for (const auto& booked : steps) {
        line.step(tick += 100, booked);
    }
    line.end();
    return line.text();
}

TEST(ResidencyCarryTest, putsIdleTimeWhereItWasSpent) {
    struct Case {
        const char* name;
        Steps steps;
        const char* intervals;
    };
    for (const Case& c : {
             Case{"fits its own interval", {{40}, {60}}, "100: 40 r60, 200: 60 n40"},
             {"a longer one fills the earliest unexplained time first",
              {{50}, {0}, {0}, {270}},
              "100: 100, 200: 100, 300: 100, 400: 20 n80"},
             {"the remainder of the last step's interval is still open",
              {{0}, {150}, {0}, {180}},
              "100: 100, 200: 100, 300: 100, 400: 30 n70"},
             {"time before a later step that fits is not idle",
              {{30}, {0}, {0}, {80}},
              "100: 30 r70, 200: 0 r100, 300: 0 r100, 400: 80 n20"},
             {"the first step is cut to the time since the begin",
              {{0}, {950}, {50}},
              "100: 100, 200: 100, 300: 50 n50"},
             {"never booked", {{0}, {0}, {0}}, "100: 0 n100, 200: 0 n100, 300: 0 n100"},
             {"what has no place goes into the next intervals",
              {{100}, {130}, {20}, {0}},
              "100: 100, 200: 100, 300: 50 n50, 400: 0 n100"},
             {"of several states the longest reached back",
              {{10, 0}, {0, 0}, {80, 160}},
              "100: 10 90, 200: 30 70, 300: 50 0 n50"},
         }) {
        const std::string seen = run(false, c.steps);
        EXPECT_EQ(c.intervals, seen) << c.name;
    }
}

TEST(ResidencyCarryTest, modesThatCoverAllTimeStayOpen) {
    // Whole timer ticks of 30 in intervals of 100: three of them, and a fourth now and then.
    EXPECT_EQ("100: 100, 200: 100, 300: 90 n10", run(true, {{90}, {90}, {110}}));
    EXPECT_EQ("100: 90 n10, 200: 90 n10", run(true, {{90}, {90}}));
}

TEST(ResidencyCarryTest, sleepLongerThanWhatMayBeHeldIsOneLongInterval) {
    Steps steps(25, {0});
    steps[24] = {2400};
    Line line(1, false);
    line.step(100, {20});
    for (std::uint64_t i = 0; i < steps.size(); ++i) {
        line.step(200 + 100 * i, steps[i]);
        EXPECT_LE(line.carry().held(), ResidencyCarry::MAX_HELD);
    }
    line.end();
    EXPECT_EQ(1000U, line.taken[0].end) << "so long it could not be said";
    EXPECT_EQ(1000U, line.taken[0].length);
    EXPECT_EQ(1100U, line.taken[1].end);
    std::uint64_t booked = 0;
    for (const Line::Taken& t : line.taken) {
        booked += t.states[0];
        EXPECT_LE(t.states[0], t.length);
    }
    EXPECT_EQ(2420U, booked);
}

TEST(ResidencyCarryTest, tellsHowMuchWouldFindNoPlace) {
    Line line(1, false);
    EXPECT_EQ(0U, line.carry().overflowOf(100, 5000)) << "a first step may have begun long ago";
    line.step(100, {60});
    EXPECT_EQ(0U, line.carry().overflowOf(200, 140));
    EXPECT_EQ(25U, line.carry().overflowOf(200, 165));
}

// Whatever is booked: no interval holds more than its length, each adds up to it, and what was booked
// comes out again, but for what was cut at the begin or found no place before the end.
TEST(ResidencyCarryTest, anyStepsKeepBothPromises) {
    constexpr std::size_t STATES = 3;
    std::mt19937 random(20240607);
    for (int round = 0; round < 300; ++round) {
        const bool isCovering = round % 2 == 0;
        const std::uint64_t quantum = 1 + random() % 400;
        Line line(STATES, isCovering);
        std::uint64_t tick = 0;
        std::uint64_t spent = 0; // since the last booking, as a processor would
        std::array<std::uint64_t, STATES> total{};
        for (int i = 0; i < 200; ++i) {
            const std::uint64_t length = 50 + random() % 100;
            tick += length;
            spent += length;
            std::vector<std::uint64_t> booked(STATES);
            const std::uint64_t whole = spent / quantum * quantum;
            if (whole > 0 && random() % 3 == 0) {
                const std::size_t state = random() % STATES;
                booked[state] = whole;
                booked[(state + 1) % STATES] = random() % 8; // more than there was
                spent -= whole;
            }
            for (std::size_t s = 0; s < STATES; ++s) {
                total[s] += booked[s];
            }
            line.step(tick, booked);
        }
        line.end();
        std::uint64_t covered = 0;
        std::uint64_t handedOn = 0;
        std::uint64_t last = 0;
        for (const Line::Taken& t : line.taken) {
            const std::uint64_t inStates = t.states[0] + t.states[1] + t.states[2];
            ASSERT_EQ(t.length, inStates + t.rest + t.notBooked);
            ASSERT_EQ(t.end - t.length, last) << "no time between two intervals";
            last = t.end;
            covered += t.length;
            handedOn += inStates;
            for (std::size_t s = 0; s < STATES; ++s) {
                ASSERT_GE(total[s], t.states[s]);
                total[s] -= t.states[s];
            }
        }
        EXPECT_EQ(tick, covered);
        EXPECT_EQ(total[0] + total[1] + total[2], line.carry().cutAtBegin() + line.carry().lost());
    }
}

} // namespace
