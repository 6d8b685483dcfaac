#include "common/metrics/thermal_sample_handler.h"
#include "tests/metric_plugins/metric_plugin_fixture.h"

namespace {

using namespace pwr;

class TemperaturesTest : public tests::MetricPluginFixture {
protected:
    using Readings = std::vector<std::pair<std::uint64_t, Values>>;

    TemperaturesTest() { m_log.take(); }
    ~TemperaturesTest() override { ThermalSampleHandler::freeInstance(); }

    static std::uint64_t milli(std::int64_t thousandths) { return static_cast<std::uint64_t>(thousandths); }
    static Keys keys() {
        return {{"CONTAINER-TAG", "ALL-THERMAL-DATA"},
                {"METRIC-TYPE", "SampledValue"},
                {"QUANTITY", "temperature"},
                {"PLUGIN", "temperatures"},
                {"RAW-TYPE", "INT"},
                {"SCALE", "0.001"}};
    }
};

TEST_F(TemperaturesTest, wholeDegreesOfEverySensorStandInOneTable) {
    declare(keys(), {"chip/hot spot", "chip/edge", "zone", "dead"});
    const auto none = std::nullopt;
    read(1000, {milli(90000), milli(90000), milli(90000), none}); // stands for no time
    read(2000, {milli(45499), milli(-500), milli(65535499), none});
    read(3000, {milli(45500), milli(-501), milli(65535500), none});
    read(3000, {milli(99000), milli(99000), milli(99000), none}); // no time has passed
    read(5000, {none, milli(4000), milli(7000), none});
    EXPECT_EQ("zone | 7 | 65535 | 32771.00 | 16389.00; chip hot spot | 45 | 46 | 45.50 | 45.50; "
              "chip edge | 0 | 4 | 2.00 | 3.00 "
              "[Values that could not be read: 7 (the time goes to the sensor's next one)] "
              "[Temperatures below 0 oC: 1 (left out; the time goes to the sensor's next one)] "
              "[No temperature came from: dead]",
              finish(6000, "Min/Max/Avg"));
}

TEST_F(TemperaturesTest, pollWithoutSomeReadingsDoesNotShiftTheNext) {
    declare(keys(), {"a"}, 1);
    declare(keys(), {"b"}, 2);
    struct Step {
        double time; // ms
        pw_u8_t message, flags;
    };
    const pw_u8_t gap = tw_driver_msg_flag::GAP;
    for (const Step& step : std::vector<Step>{{1, 1, 0},
                                              {1.5, 2, 0},
                                              {2.1, 2, 0},
                                              {3, 1, 0},
                                              {3.5, 2, 0},
                                              {4, 1, 0},
                                              {6, 1, gap},
                                              {6.5, 2, gap},
                                              {7, 1, 0},
                                              {8.1, 2, gap}}) {
        read(1000 + static_cast<std::uint64_t>(step.time * 1e6), {milli(30000)}, step.flags, step.message);
    }
    // b has the moments of a, and its own where there is none of a.
    EXPECT_EQ("a | 5 | 1.00 | 2.00 | 1.40; b | 5 | 0.90 | 3.00 | 1.62 "
              "[Readings after a gap: 3 (they stand for the time of the gap as well)]",
              finish(9000000, "Total Samples"));
    EXPECT_EQ(std::string::npos, m_log.take().find("not set for all"));
}

TEST_F(TemperaturesTest, sharesTheTableAndRefusesWhatItCannotCompute) {
    Keys wrong = keys();
    wrong.emplace_back("SOURCE", "COUNTER");
    wrong.emplace_back("RAW-TYPE", "UINT");
    declare(wrong, {"counter"}, 3);
    EXPECT_EQ("WARNING: M: temperatures computes SampledValue from a LEVEL of the quantity temperature only, "
              "in the "
              "container ALL-THERMAL-DATA\n",
              m_log.take());
    declare(keys(), {"mine"});
    const auto* const another = m_loader.getPlugins<MetricPlugin>().front();
    ThermalSampleHandler* const handler = ThermalSampleHandler::getInstance(m_system, another);
    const EntityHandle* const other = EntityHandle::create("other", nullptr);
    handler->addEntity(other);
    m_log.take();
    for (const std::uint64_t tick : {2000U, 3000U}) {
        read(tick, {milli(30000)});
        handler->setTemperature(other, tick + 5, 50, false);
    }
    EXPECT_EQ("no table", finish(3000, "Min/Max/Avg"));
    EXPECT_EQ("", m_log.take());
    ThermalSampleHandler::release(another);
    EXPECT_EQ("mine | 30 | 30 | 30.00 | 30.00; other | 50 | 50 | 50.00 | 50.00", finish(3000, "Min/Max/Avg"));
}

} // namespace
