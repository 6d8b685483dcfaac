#include "tests/metric_plugins/metric_plugin_fixture.h"

namespace {

using namespace pwr;

constexpr std::uint64_t INTERVAL = 100000000; // 100 ms in ticks
const auto GONE = std::nullopt;

class ResidencyCarryPluginTest : public tests::MetricPluginFixture {
protected:
    void declareIdle(const std::vector<std::string>& instances, const char* width = "64") {
        declare({{"METRIC-TYPE", "SampledResidency"},
                 {"QUANTITY", "time"},
                 {"SOURCE", "COUNTER"},
                 {"WIDTH", width},
                 {"PLUGIN", "residency_carry"},
                 {"REST", "Awake"}},
                instances);
    }
    // Counters in microseconds, one reading every 100 ms from the begin on.
    void readAll(const std::vector<Values>& readings) {
        for (std::size_t i = 0; i < readings.size(); ++i) {
            read(1000 + i * INTERVAL, readings[i]);
        }
    }
    std::string percentages(std::uint64_t intervals) {
        return finish(1000 + intervals * INTERVAL, "(Percentage)");
    }
    void expectNoRefusal() { EXPECT_EQ(std::string::npos, m_log.text().find("discarded")) << m_log.text(); }
};

TEST_F(ResidencyCarryPluginTest, lateBookingsAddUpToTheTimeThatPassed) {
    declareIdle({"cpu/C1", "cpu/C6", "busy/C1", "busy/C6"});
    readAll({{5, 5, 5, 5},
             {5, 5, 5, 5},
             {10005, 150005, 5, 5},
             {10005, 150005, 5, 5},
             {10005, 150005, 5, 5},
             {30005, 350005, 40005, 5}});
    EXPECT_EQ("cpu | C1 | 6.00; cpu | C6 | 70.00; cpu | Awake | 4.00; cpu | Not booked | 20.00; "
              "busy | C1 | 8.00; busy | C6 | 0.00; busy | Awake | 80.00; busy | Not booked | 12.00",
              percentages(5));
    expectNoRefusal();
}

TEST_F(ResidencyCarryPluginTest, offlineProcessorIsAGap) {
    declareIdle({"cpu/C1", "steady/C1"});
    readAll({{0, 0}, {100000, 50000}, {GONE, 100000}, {GONE, 150000}, {100000, 200000}, {150000, 250000}});
    EXPECT_EQ(
        "cpu | C1 | 75.00; cpu | Awake | 0.00; cpu | Not booked | 25.00; "
        "steady | C1 | 50.00; steady | Awake | 40.00; steady | Not booked | 10.00 "
        "[Values that could not be read: 2 (their time is left out)] [cpu: covers 200 of 500 ms; gaps: 1]",
        percentages(5));
    expectNoRefusal();
}

TEST_F(ResidencyCarryPluginTest, countersThatCannotBeBelievedStartAnew) {
    declareIdle({"reset/C1", "absurd/C1", "wrapped/C1", "back/C1"}, "32");
    constexpr std::uint64_t END = std::uint64_t{1} << 32U;
    readAll({{500000, 500000, END - 50000, 500000},
             {600000, 600000, 50000, 600000},
             {0, 9600000, 150000, 590000},
             {100000, 9700000, 250000, 700000}});
    EXPECT_EQ("reset | C1 | 100.00; reset | Awake | 0.00; reset | Not booked | 0.00; "
              "absurd | C1 | 100.00; absurd | Awake | 0.00; absurd | Not booked | 0.00; "
              "wrapped | C1 | 100.00; wrapped | Awake | 0.00; wrapped | Not booked | 0.00; "
              "back | C1 | 66.67; back | Awake | 33.33; back | Not booked | 0.00 "
              "[Counters that fell back: 2 (what they counted meanwhile is left out)] "
              "[Counters that went back a little: 1 (they count on from where they were)] "
              "[Counters that ran through their end: 1 (they are counted on)] "
              "[reset: covers 200 of 300 ms; gaps: 1] [absurd: covers 200 of 300 ms; gaps: 1]",
              percentages(3));
    expectNoRefusal();
}

TEST_F(ResidencyCarryPluginTest, sleepLongerThanSixteenIntervalsKeepsItsTime) {
    declareIdle({"deep/C6", "light/C6"});
    std::vector<Values> readings;
    for (std::uint64_t i = 0; i <= 40; ++i) {
        readings.push_back({i < 40 ? 1000 : 3801000, i * 50000});
    }
    readAll(readings);
    EXPECT_EQ("deep | C6 | 95.00; deep | Awake | 2.50; deep | Not booked | 2.50; "
              "light | C6 | 50.00; light | Awake | 48.75; light | Not booked | 1.25",
              percentages(40));
    expectNoRefusal();
}

} // namespace
