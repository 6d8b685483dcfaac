#include "common/metadata/system_metadata.h"
#include "common/plugin/plugin_environment.h"
#include "common/tw_clock.h"

#include <chrono>
#include <gmock/gmock.h>
#include <limits>

namespace pwr {
namespace {

class SetClock : public TWClockSource {
public:
    explicit SetClock(const std::string& uuid) : TWClockSource(uuid, "SET", "told the time by the test") {}
    float getFrequency() const override { return 1.0F; }
    pw_u64_t getTimestamp() const override { return 42; }
};

class DefaultClock {
public:
    explicit DefaultClock(TWClockSource* clock) { g_pluginEnvironment->setDefaultClock(clock); }
    ~DefaultClock() {
        g_pluginEnvironment->setDefaultClock(nullptr);
        g_pluginEnvironment->setDefaultClockToTSCRatio(0.0F, 1.0F);
    }
    DefaultClock(const DefaultClock&) = delete;
    DefaultClock& operator=(const DefaultClock&) = delete;
};

std::vector<float> frequenciesOf(const SystemMetadata& system) {
    std::vector<TWClockSource*> clocks;
    getTWSystemClockSources(system, clocks);
    std::vector<float> frequencies;
    frequencies.reserve(clocks.size());
    for (const TWClockSource* clock : clocks) {
        frequencies.push_back(clock->getFrequency());
    }
    freeTWSystemClockSources(clocks);
    return frequencies;
}

TEST(Clocks, threeOfThePlatform) {
    std::vector<TWClockSource*> clocks;
    getTWSystemClockSources(SystemMetadata(), clocks);
    ASSERT_EQ(3U, clocks.size());
    EXPECT_EQ("QPC", clocks[0]->getName());
    EXPECT_EQ("d3ad8390-29cc-11e6-bdf4-0800200c9a66", clocks[0]->getUUID());
    EXPECT_GT(clocks[0]->getFrequency(), 0.0F);
    EXPECT_EQ("8ad42930-517d-11e5-b970-0800200c9a66", clocks[1]->getUUID());
    EXPECT_EQ(1000.0F, clocks[1]->getFrequency());
    EXPECT_EQ("5138ffc0-517d-11e5-b970-0800200c9a66", clocks[2]->getUUID());
    EXPECT_EQ(0.0F, clocks[2]->getFrequency());
    for (TWClockSource* clock : {clocks[0], clocks[2]}) {
        const pw_u64_t before = clock->getTimestamp();
        EXPECT_LE(before, clock->getTimestamp()) << clock->getName();
    }
    const auto wall = std::chrono::duration_cast<std::chrono::nanoseconds>(
        std::chrono::system_clock::now().time_since_epoch());
    EXPECT_NEAR(static_cast<double>(wall.count()), static_cast<double>(clocks[1]->getTimestamp()), 60e9);
    clocks.push_back(nullptr);
    freeTWSystemClockSources(clocks);
    EXPECT_EQ(4U, clocks.size());
}

TEST(Clocks, timeStampFrequency) {
    SystemMetadata system;
    system.twaClockFreq = 2500.0F;
    EXPECT_EQ(0.0F, frequenciesOf(system)[2]);
    SetClock other("other");
    const DefaultClock installed(&other);
    g_pluginEnvironment->setDefaultClockToTSCRatio(10.0F, 2000.0F);
    EXPECT_EQ(2000.0F, frequenciesOf(system)[2]);
    SetClock tsc("5138ffc0-517d-11e5-b970-0800200c9a66");
    g_pluginEnvironment->setDefaultClock(&tsc);
    EXPECT_EQ(2500.0F, frequenciesOf(system)[2]);
}

TEST(Clocks, defaultClock) {
    EXPECT_EQ(0U, getTWATimestamp());
    EXPECT_EQ("", getTWAClockUUID());
    SetClock clock("uuid");
    const DefaultClock installed(&clock);
    EXPECT_EQ(42U, getTWATimestamp());
    EXPECT_EQ(&clock.getUUID(), &getTWAClockUUID());
}

TEST(Clocks, synchronizedClock) {
    const auto sync = [](const char* uuid, pw_u64_t value) {
        return TWClockSync{uuid, "", 1, value, "", "", 1, 0};
    };
    TWClockSync out = sync("untouched", 9);
    EXPECT_FALSE(wasClockSynchronized("a", {}, out));
    EXPECT_EQ("untouched", out.clockUUID);
    const std::deque<TWClockSync> syncs = {sync("a", 1), sync("b", 2), sync("b", 3)};
    EXPECT_TRUE(wasClockSynchronized("b", syncs, out));
    EXPECT_EQ(2U, out.clockValue);
    EXPECT_FALSE(wasClockSynchronized("c", syncs, out));
    EXPECT_EQ(3U, out.clockValue);
}

TEST(Clocks, converted) {
    struct Case {
        float clockMHz;
        float defaultMHz;
        pw_u64_t time; // the clocks read 10000 and 500000 at the common moment
        pw_u64_t expected;
    };
    const float infinity = std::numeric_limits<float>::infinity();
    for (const Case& c : {
             Case{5, 5, 10000, 500000},
             Case{1, 1000, 10001, 501000},
             Case{1000, 1, 11999, 500001},
             Case{1, 19.2F, 1010000, 19700000},       // 19.2F is a little more, and the ticks are whole
             Case{5, 5, 9999, 500000},                // a distance of 2^64 as a double does not fit
             Case{5, 5, 10000 - 2048, 500000 - 2048}, // the nearest one that does
             Case{4, 2, 9999, 500000 + (1ULL << 63)}, // half of it
             Case{0, 5, 10001, 500000},
             Case{0, 0, 10001, 500000},
             Case{5, infinity, 10000, 500000},
         }) {
        const TWClockSync sync{"", "", c.clockMHz, 10000, "", "", c.defaultMHz, 500000};
        EXPECT_EQ(c.expected, convertTimestamp(sync, c.time))
            << c.clockMHz << " " << c.defaultMHz << " " << c.time;
    }
}

} // namespace
} // namespace pwr
