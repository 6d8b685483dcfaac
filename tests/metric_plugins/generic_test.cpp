#include "tests/metric_plugins/metric_plugin_fixture.h"

#include <cmath>
#include <limits>

namespace {

using namespace pwr;

constexpr std::uint64_t SECOND = 1000000000;
constexpr std::uint64_t BITS32 = std::uint64_t{1} << 32U;
const auto GONE = std::nullopt;

class GenericMetricTest : public tests::MetricPluginFixture {};

std::uint64_t bitsOf(std::int64_t value) {
    return std::bit_cast<std::uint64_t>(value);
}
std::uint64_t bitsOf(double value) {
    return std::bit_cast<std::uint64_t>(value);
}

struct Reading {
    std::uint64_t seconds;
    std::optional<std::uint64_t> value;
};

using Keys = std::vector<std::pair<std::string, std::string>>;

struct Case {
    const char* name;
    Keys keys;
    std::vector<Reading> readings;
    const char* table;
    const char* seen;
};

std::ostream& operator<<(std::ostream& stream, const Case& c) {
    return stream << c.name;
}

// One instance of a fixture per case: containers and handles are of one collection.
class GenericMetricCases : public GenericMetricTest, public ::testing::WithParamInterface<Case> {};

TEST_P(GenericMetricCases, tableIsAsExpected) {
    const Case& c = GetParam();
    declare(c.keys, {"thing"});
    for (const Reading& reading : c.readings) {
        read(1000 + reading.seconds * SECOND, {reading.value});
    }
    EXPECT_EQ(c.seen, finish(1000 + 10 * SECOND, c.table)) << m_log.text();
}

Keys counter(const char* width, const char* scale = "1") {
    return {{"METRIC-TYPE", "SampledDelta"},
            {"QUANTITY", "data"},
            {"SOURCE", "COUNTER"},
            {"WIDTH", width},
            {"SCALE", scale}};
}
Keys level(const char* raw, const char* value, const char* scale = "1", const char* offset = "0") {
    return {{"METRIC-TYPE", "SampledValue"}, {"QUANTITY", "Things;x"}, {"SOURCE", "LEVEL"}, {"RAW-TYPE", raw},
            {"VALUE-TYPE", value},           {"SCALE", scale},         {"OFFSET", offset}};
}

// Average rate in MB/s, and the total.
const Case COUNTERS[] = {
    {"plain", counter("64"), {{0, 7}, {1, 1000007}, {3, 3000007}}, "Average Rate", "thing | 1.00 | 3000000"},
    {"scaled", counter("64", "512"), {{0, 10}, {2, 20}}, "Average Rate", "thing | 0.00 | 5120"},
    {"wrapped32",
     counter("32"),
     {{0, BITS32 - 1000}, {1, 500}},
     "Average Rate",
     "thing | 0.00 | 1500 [Counters that ran through their end: 1 (they are counted on)]"},
    {"wrapped32fast",
     counter("32"),
     {{0, 2147483648}, {1, 3221225472}, {2, 1000}},
     "Average Rate",
     "thing | 1073.74 | 2147484648 [Counters that ran through their end: 1 (they are counted on)]"},
    {"wrapped64",
     counter("64"),
     {{0, std::numeric_limits<std::uint64_t>::max() - 9}, {1, 90}},
     "Average Rate",
     "thing | 0.00 | 100 [Counters that ran through their end: 1 (they are counted on)]"},
    {"reset32",
     counter("32"),
     {{0, 3000000000}, {1, 3000000100}, {2, 5}, {3, 105}},
     "Average Rate",
     "thing | 0.00 | 200 [Counters that fell back: 1 (what they counted meanwhile is left out)]"},
    {"reset64",
     counter("64"),
     {{0, 1000}, {1, 2000}, {2, 0}, {3, 500}},
     "Average Rate",
     "thing | 0.00 | 1500 [Counters that fell back: 1 (what they counted meanwhile is left out)]"},
    {"leap",
     counter("64"),
     {{0, 1000}, {1, std::uint64_t{1} << 63U}, {2, (std::uint64_t{1} << 63U) + 9}},
     "Average Rate",
     "thing | 0.00 | 9 [Counters that fell back: 1 (what they counted meanwhile is left out)]"},
    {"beyondWidth",
     counter("8"),
     {{0, 250}, {1, 4}, {2, 300}, {3, 10}, {4, 20}},
     "Average Rate",
     "thing | 0.00 | 20 [Counters that fell back: 1 (what they counted meanwhile is left out)] "
     "[Counters that ran through their end: 1 (they are counted on)]"},
    {"missing",
     counter("64"),
     {{0, 100}, {1, GONE}, {2, 5000000}, {3, 6000000}},
     "Average Rate",
     "thing | 1.00 | 1000000 [Values that could not be read: 1 (their time is left out)]"},
    {"sameTick",
     counter("64"),
     {{0, 100}, {1, 200}, {1, 900}, {2, 300}},
     "Average Rate",
     "thing | 0.00 | 200"},
};

const Case LEVELS[] = {
    {"unsigned",
     level("UINT", "UINT"),
     {{0, 9}, {1, 4}, {4, 8}},
     "Min/Max/Avg",
     "thing | 4 | 8 | 6.00 | 7.00"},
    {"signedScaled",
     level("INT", "REAL", "0.001", "1"),
     {{1, bitsOf(std::int64_t{-2500})}, {2, bitsOf(std::int64_t{500})}},
     "Min/Max/Avg",
     "thing | -1.50 | 1.50 | 0.00 | 0.00"},
    {"realToWhole",
     level("REAL", "INT"),
     {{1, bitsOf(-2.6)}, {2, bitsOf(7.4)}},
     "Min/Max/Avg",
     "thing | -3 | 7 | 2.00 | 2.00"},
    {"noNumber",
     level("REAL", "UINT"),
     {{1, bitsOf(std::nan(""))}, {2, bitsOf(1e300)}},
     "Min/Max/Avg",
     "thing | 0 | 18446744073709551615 | 9223372036854775808.00 | 9223372036854775808.00"},
    {"wholeKeepsAllDigits",
     level("INT", "INT", "3", "-1"),
     {{1, 1000000000000000001}},
     "Min/Max/Avg",
     "thing | 3000000000000000002 | 3000000000000000002 | 3000000000000000000.00 | 3000000000000000000.00"},
    {"saturates",
     level("UINT", "UINT", "1000"),
     {{1, std::uint64_t{1} << 62U}},
     "Min/Max/Avg",
     "thing | 18446744073709551615 | 18446744073709551615 | 18446744073709551616.00 | "
     "18446744073709551616.00"},
    // After a gap a level stands for as long as the last one did, not for the gap.
    {"afterGap",
     level("UINT", "UINT"),
     {{1, 10}, {2, GONE}, {9, 20}},
     "Min/Max/Avg",
     "thing | 10 | 20 | 15.00 | 15.00 [Values that could not be read: 1 (their time is left out)]"},
};

std::string nameOf(const ::testing::TestParamInfo<Case>& info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Counter, GenericMetricCases, ::testing::ValuesIn(COUNTERS), nameOf);
INSTANTIATE_TEST_SUITE_P(Level, GenericMetricCases, ::testing::ValuesIn(LEVELS), nameOf);

TEST_F(GenericMetricTest, gapAndResetFlagsHoldForTheWholeReading) {
    declare(counter("64"), {"one", "two"});
    read(1000, {0, 0});
    read(1000 + SECOND, {10, 20});
    read(1000 + 2 * SECOND, {100, 200}, tw_driver_msg_flag::GAP);
    read(1000 + 3 * SECOND, {110, 220});
    EXPECT_EQ("one | 0.00 | 20; two | 0.00 | 40 [Readings after a gap: 1 (the time before them is left out)]",
              finish(1000 + 3 * SECOND, "Average Rate"));
}

TEST_F(GenericMetricTest, residencyHandsOnAllStatesOrNone) {
    declare({{"METRIC-TYPE", "SampledResidency"}, {"QUANTITY", "time"}, {"SOURCE", "COUNTER"}},
            {"cpu/A", "cpu/B", "other/A"});
    read(1000, {0, 0, 0});
    read(1000 + SECOND, {250000, 750000, 1500000}); // microseconds; the last one is more than there was
    read(1000 + 2 * SECOND, {500000, GONE, 1500000});
    EXPECT_EQ("cpu | A | 25.00; cpu | B | 75.00; other | A | 50.00 [Values that could not be read: 1 (their "
              "time is "
              "left out)] [States that held more time than had passed: 1 (the excess is left out)]",
              finish(1000 + 2 * SECOND, "(Percentage)"));
    EXPECT_EQ("", m_log.text().substr(0, m_log.text().find("WARNING: Output config")))
        << "no sample was refused";
}

TEST_F(GenericMetricTest, statesAreTheColumnsOfALevel) {
    Keys keys = level("UINT", "UINT");
    keys.emplace_back("STATES", "1=on,0=off");
    declare(keys, {"switch"});
    read(1000 + SECOND, {1});
    read(1000 + 4 * SECOND, {0});
    EXPECT_EQ("switch | 25.00 | 75.00", finish(1000 + 4 * SECOND, "Approximated Residency"));
}

TEST_F(GenericMetricTest, textsAreTracedWhenTheyChange) {
    declare({{"METRIC-TYPE", "TracedValueTransition"}, {"SOURCE", "LEVEL"}, {"VALUE-TYPE", "STRING"}},
            {"governor"});
    std::uint64_t seconds = 0;
    for (const char* text : {"slow", "slow", "fast", "fast", "slow"}) {
        CollectionData reading;
        reading.header().timestamp = 1000 + ++seconds * SECOND;
        reading.header().id = {1, 1, 1};
        reading.addText(text);
        process(reading);
    }
    EXPECT_EQ("governor | fast | 1; governor | slow | 2 [The states are known for 80.00 % of the time: not "
              "before the "
              "first event, and not where events were lost]",
              finish(1000 + 5 * SECOND, "Counts"));
}

TEST_F(GenericMetricTest, whatLiesInAGapBelongsToNoState) {
    declare({{"METRIC-TYPE", "TracedValueTransition"}, {"SOURCE", "LEVEL"}, {"STATES", "7=on,0=off"}},
            {"left", "right", "silent"});
    const auto change = [this](std::uint64_t seconds, pw_u16_t instance, std::uint64_t value, pw_u8_t flags) {
        CollectionData reading;
        reading.header().timestamp = 1000 + seconds * SECOND;
        reading.header().id = {1, 1, 1};
        reading.header().flags = flags;
        reading.header().first_instance = instance;
        reading.add(value);
        process(reading);
    };
    m_system.stopTSC = 1000 + 10 * SECOND;
    change(0, 0, 7, 0);
    change(0, 1, 7, 0);
    change(1, 0, 0, 0);                       // on for a second
    change(2, 0, 0, 0);                       // off for a second at least
    change(6, 0, 7, tw_driver_msg_flag::GAP); // nobody knows of the other four
    change(6, 1, 0, 0);                       // and this one was on all the time
    EXPECT_EQ("left | on | 83.33; left | off | 16.67; right | on | 60.00; right | off | 40.00 [Times that "
              "events were lost: 1 (they are missing here)] "
              "[The states are known for 53.33 % of the time: not before the first event, and not where "
              "events were "
              "lost; without any event: 1 of 3]",
              finish(1000 + 10 * SECOND, "(Percentage)"));
}

TEST_F(GenericMetricTest, badDeclarationsSayTheKeyAndWhatIsExpected) {
    struct Bad {
        Keys keys;
        const char* message;
    };
    for (const Bad& bad : {
             Bad{{{"METRIC-TYPE", "Delta"}},
                 "METRIC-TYPE: expected SampledDelta, SampledResidency, SampledValue, TracedValueTransition "
                 "or TracedEvent, "
                 "got \"Delta\""},
             {{{"SOURCE", "counter"}}, "SOURCE: expected COUNTER or LEVEL, got \"counter\""},
             {{{"SCALE", "1,5"}}, "SCALE: expected a decimal number, got \"1,5\""},
             {{{"WIDTH", "65"}}, "WIDTH: expected a number of bits from 1 to 64, got \"65\""},
             {{{"WIDTH", "0"}}, "WIDTH: expected a number of bits from 1 to 64, got \"0\""},
             {{{"STATES", "1=on,off"}}, "STATES: expected VALUE=NAME,VALUE=NAME, got \"1=on,off\""},
             {{{"COLOUR", "red"}}, "unknown key COLOUR"},
             {{{"METRIC-NAME", ""}}, "METRIC-NAME is missing"},
             {{{"SOURCE", "COUNTER"}, {"RAW-TYPE", "REAL"}}, "RAW-TYPE: a COUNTER is UINT"},
             {{{"RAW-TYPE", "STRING"}, {"VALUE-TYPE", "REAL"}}, "VALUE-TYPE: a text stays a text"},
         }) {
        m_log.take();
        declare(bad.keys, {"thing"});
        EXPECT_EQ(std::string("WARNING: metric 1 of plug-in 1 cannot be computed: ") + bad.message + "\n",
                  m_log.take());
    }
}

TEST_F(GenericMetricTest, whatMakesNoContainerSaysWhy) {
    declare({{"QUANTITY", "bytes"}}, {"thing"});
    EXPECT_EQ("WARNING: M: QUANTITY: \"bytes\" is no built-in quantity; a new one is NAME;UNIT\n",
              m_log.take());
}

TEST_F(GenericMetricTest, carryTakesResidenciesOnly) {
    declare({{"PLUGIN", "residency_carry"}}, {"thing"});
    EXPECT_EQ("WARNING: M: residency_carry computes SampledResidency from a COUNTER only\n", m_log.take());
}

} // namespace
