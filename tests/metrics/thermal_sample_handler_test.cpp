#include "common/metrics/thermal_sample_handler.h"

#include "common/plugin/metric_plugin.h"
#include "tests/metrics/metric_fixture.h"

#include <sstream>

using pwr::ThermalSampleHandler;

namespace {

class Reporter : public MetricPlugin {
public:
    Reporter() : MetricPlugin("reporter") {}
    const char* getDescription() const override { return ""; }
    int processMetadata(const pwr::Metadata&) override { return 0; }
    int processInstances(const pwr::MsgMetadata&, const MessageInstances&) override { return 0; }
    int initializeCollection(const pwr::SystemMetadata&) override { return 0; }
    int processMessage(const CollectionData&) override { return 0; }
    int finalizeCollection(std::uint64_t) override { return 0; }
};

class ThermalTest : public tests::MetricTest {
protected:
    ThermalTest() {
        pwr::WriterInterfaceConfigFileParser::destroy();
        std::string text =
            "ALL_OUTPUT-ORDER_TAG_FEATURE_ORDER=temp\nALL_temp_TAG_TABLE_ORDER=ALL-THERMAL-DATA\n";
        for (const char* key : {"NUMBER-OF-OCCURENCES", "RELATIVE-FREQUENCY-PERCENTAGE", "MIN-MAX",
                                "APPROXIMATED-RESIDENCY", "SAMPLE-COUNT"}) {
            text += "temp_ALL-THERMAL-DATA_" + std::string(key) + "_TABLE_VALUE=NO\n";
        }
        pwr::WriterInterfaceConfigFileParser::instance()->parseText("test", text);
    }
    ~ThermalTest() override { ThermalSampleHandler::freeInstance(); }

    const pwr::EntityHandle* entityOf(char letter) const {
        return letter == 'A' ? e1 : letter == 'B' ? e2 : nullptr;
    }
    /// Carries out steps such as "A100=40" (a reading), "A100!40" (without a duration) and "A100-0" (nothing read).
    /// Returns the results, a digit each, then the sampling points.
    std::string run(const std::string& steps) {
        ThermalSampleHandler& handler = *ThermalSampleHandler::getInstance(metadata, &first);
        handler.addEntity(e1);
        handler.addEntity(e2);
        const auto record = std::make_shared<tests::RecordingAccumulator>();
        handler.getMetric().addAccumulator(record);
        std::string results;
        std::istringstream in(steps);
        char letter = 0;
        char kind = 0;
        std::uint64_t timestamp = 0;
        std::uint16_t degrees = 0;
        while (in >> letter >> timestamp >> kind >> degrees) {
            results += std::to_string(
                kind == '-' ? handler.skipTemperature(entityOf(letter), timestamp)
                            : handler.setTemperature(entityOf(letter), timestamp, degrees, kind == '!'));
        }
        ThermalSampleHandler::release(&first);
        ThermalSampleHandler::freeInstance();
        return results + "\n" + record->text;
    }

    Reporter first, second;
};

TEST_F(ThermalTest, readingsOfARoundShareItsTimestamp) {
    const std::string gap = "WARNING: Temperature values were not set for all the entities at ";
    struct Case {
        const char* steps;
        std::string expected, said;
        bool isImmediate = false;
    };
    const std::vector<Case> cases = {
        {"A100=40 B103=41 A200=42",
         "000\nbegin\n100(100): e1/Temperature Metrics=40+0 e2/Temperature Metrics=41+0\n"
         "200(100): e1/Temperature Metrics=42+100\nend\n",
         "WARNING: SampledValueAccumulator has zero weight!\nWARNING: SampledValueAccumulator has zero "
         "weight!\n"},
        {"A200=40 A300=41 B301=5 B400=6 A401=7",
         "00000\nbegin\n200(100): e1/Temperature Metrics=40+100\n"
         "300(200): e1/Temperature Metrics=41+100 e2/Temperature Metrics=5+200\n"
         "400(300): e2/Temperature Metrics=6+100 e1/Temperature Metrics=7+100\nend\n",
         gap + "200.\n"},
        // After an incomplete round the count starts anew, and so does every complete one after it.
        {"A200=1 B201=2 B300=3 B400=4 A401=5 A500=6 B501=7",
         "0000000\nbegin\n200(100): e1/Temperature Metrics=1+100 e2/Temperature Metrics=2+100\n"
         "300(200): e2/Temperature Metrics=3+100\n"
         "400(300): e2/Temperature Metrics=4+100 e1/Temperature Metrics=5+200\n"
         "500(400): e1/Temperature Metrics=6+100 e2/Temperature Metrics=7+100\nend\n",
         gap + "300.\n"},
        // What is not there has its place, too; the round takes the moment of the first reading that is there.
        {"A200-0 B205=2 A300=3 B305-0 A400-0 B405-0 A500=4",
         "0000000\nbegin\n205(100): e2/Temperature Metrics=2+105\n300(205): e1/Temperature Metrics=3+200\n"
         "500(300): e1/Temperature Metrics=4+200\nend\n",
         ""},
        // A rejected reading keeps its place; without a duration it weighs nothing.
        {"A90=1 B200=2 A300!3", "110\nbegin\n300(100): e1/Temperature Metrics=3+0\nend\n",
         "WARNING: Temperature Metrics: Timestamps must be monotonically increasing. Previous=100, "
         "current=90 for "
         "e1/. Data discarded.\n"
         "WARNING: Temperature Metrics: Timestamps must be monotonically increasing. Previous=100, "
         "current=90 for "
         "e2/. Data discarded.\nWARNING: SampledValueAccumulator has zero weight!\n"},
        {"A200=65535 A300=0 B250=2 X300=1 X300-0",
         "00011\nbegin\n200(100): e1/Temperature Metrics=65535+100\n300(200): e1/Temperature Metrics=0+100\n"
         "250(300): e2/Temperature Metrics=2+150\nend\n",
         "WARNING: ThermalSampleHandler: Please provide a valid entity when setting temperature.\n"
         "WARNING: ThermalSampleHandler: Please provide a valid entity when setting temperature.\n",
         true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.steps);
        metadata.immediateMode = c.isImmediate;
        EXPECT_EQ(c.expected, run(c.steps));
        EXPECT_EQ(c.said, log.take());
    }
}

TEST_F(ThermalTest, lastPluginEndsTheCommonTable) {
    EXPECT_EQ(1, ThermalSampleHandler::release(&first));
    EXPECT_EQ("WARNING: Attempt to unregister a plugin from a non-existant ThermalSampleHandler\n",
              log.take());
    ThermalSampleHandler* handler = ThermalSampleHandler::getInstance(metadata, &first);
    EXPECT_EQ(handler, ThermalSampleHandler::getInstance(pwr::SystemMetadata(), &second));
    EXPECT_EQ(0, handler->addEntity(e1));
    EXPECT_EQ(0, handler->addEntity(e2));
    EXPECT_EQ(1, handler->addEntity(e1));
    EXPECT_EQ(1, handler->addEntity(nullptr));
    const pwr::EntityHandle* stranger = pwr::EntityHandle::create("e3", nullptr);
    EXPECT_EQ(1, handler->setTemperature(stranger, 200, 1, false));
    handler->setTemperature(e1, 200, 40, false);
    handler->setTemperature(e2, 201, 50, false);
    EXPECT_EQ(1, handler->resetTemperatures({e1, stranger, e2}, 300, 20));
    EXPECT_EQ(1, handler->resetTemperatures({e1, e2}, 300, 20)) << "e1 has one of that moment";
    EXPECT_EQ(0, handler->resetTemperatures({e1, e2}, 301, 10));
    EXPECT_EQ(
        "WARNING: ThermalSampleHandler: Entity e1 already added\n"
        "WARNING: ThermalSampleHandler: please provide a valid entity.\n"
        "WARNING: ThermalSampleHandler: cannot set temperature for an entity that has not been added yet.\n"
        "WARNING: ThermalSampleHandler: cannot set temperature for an entity that has not been added yet.\n"
        "WARNING: Temperature Metrics: Timestamps must be monotonically increasing. Previous=300, "
        "current=300 "
        "for e1/. Data discarded.\nWARNING: SampledValueAccumulator has zero weight!\n",
        log.take());

    capture.writer.tables.clear();
    EXPECT_EQ(0, ThermalSampleHandler::release(&first));
    EXPECT_EQ("", capture.text()) << "there is another plug-in still";
    EXPECT_EQ(1, ThermalSampleHandler::release(&first));
    EXPECT_EQ("WARNING: ThermalSampleHandler: Attempt to unregister a plugin that has not been registered or "
              "it may "
              "have already been unregistered.\n",
              log.take());
    EXPECT_EQ(0, ThermalSampleHandler::release(&second));
    EXPECT_EQ("Temperature Metrics Summary - Sampled: Min/Max/Avg\n"
              "Entity | Min (oC) | Max (oC) | Avg (oC) | Time-weighted Avg (oC)\n"
              "e1 | 10 | 40 | 23.33 | 40.00\ne2 | 10 | 50 | 30.00 | 50.00\n\n",
              capture.text());
}

TEST_F(ThermalTest, nothingIsReportedOrLeftWithoutReadings) {
    ThermalSampleHandler::getInstance(metadata, &first);
    EXPECT_EQ(0, ThermalSampleHandler::release(&first));
    EXPECT_EQ("", log.take());
    ThermalSampleHandler::freeInstance();
    ThermalSampleHandler::freeInstance();
    EXPECT_EQ(1, ThermalSampleHandler::release(&first));
    pwr::WriterInterfaceConfigFileParser::destroy();
    EXPECT_THROW(ThermalSampleHandler::getInstance(metadata, &first), std::runtime_error);
    EXPECT_EQ(1, ThermalSampleHandler::release(&first)) << "one that could not be made is none";
}

} // namespace
