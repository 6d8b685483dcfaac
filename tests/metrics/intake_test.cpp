#include "common/values/formatter.h"
#include "tests/metrics/metric_fixture.h"

using tests::DataElement;
using tests::Metric;
using tests::MetricTest;
using tests::RecordingAccumulator;
using tests::Type;

namespace {

using pwr::Data;

const std::string LONG_DURATION =
    "WARNING: M: Duration cannot be more than the elapsed time since last sampling/transition point. ";

TEST_F(MetricTest, rejectsBadSamplesAndStaysAsItWas) {
    const Data ticks(std::uint64_t{5});
    struct Case {
        Type type;
        std::uint64_t timestamp;
        bool hasEntity;
        bool hasDescriptor;
        Data value;
        std::uint64_t duration;
        std::string warning;
    };
    const std::vector<Case> cases = {
        {Type::SampledValue, 0, false, true, Data(), 0,
         "WARNING: M: Please provide a valid non-zero timestamp.\n"},
        {Type::SampledValue, 300, false, true, Data(), 0,
         "WARNING: M: Please provide an entity in the DataElement object.\n"},
        {Type::SampledValue, 300, true, true, Data(), 0,
         "WARNING: M: Please set the value aka measurement in the DataElement object.\n"},
        {Type::SampledResidency, 300, true, false, Data(2.0), 0,
         "WARNING: M: Descriptor is required for MetricType::SampledResidency type. Please provide one.\n"},
        {Type::SampledResidency, 300, true, true, Data(std::int64_t{5}), 0,
         "WARNING: M: MetricType::SampledResidency type requires values to be given in clock ticks as "
         "pw_u64_t data "
         "type.\n"},
        {Type::SampledValue, 99, true, true, ticks, 0,
         "WARNING: M: Timestamps must be monotonically increasing. Previous=100, current=99 for e1/A. Data "
         "discarded.\n"},
        {Type::SampledDelta, 130, true, true, ticks, 31,
         LONG_DURATION + "duration=31, elapsed time=30 for e1+A. Data discarded.\n"},
        {Type::TracedEvent, 130, true, false, ticks, 31,
         LONG_DURATION + "duration=31, elapsed time=30 for e1+. Data discarded.\n"},
    };
    for (const Case& test : cases) {
        Metric metric = make(test.type);
        DataElement element(test.hasEntity ? e1 : nullptr, test.hasDescriptor ? a : nullptr);
        element.setValue(test.value);
        EXPECT_EQ(1, metric.setData(test.timestamp, element, test.duration));
        EXPECT_EQ(test.warning, log.take());
        EXPECT_TRUE(metric.isEmpty() && metric.getEntities().empty() && metric.getDescriptors().empty());
        EXPECT_EQ(nullptr, element.getOrvexDescriptor());
        log.take();
    }
}

TEST_F(MetricTest, timestampsIncreaseForEachCombination) {
    Metric metric = make(Type::SampledValue);
    const Data value(1.0);
    EXPECT_EQ(0, add(metric, 100, e1, a, value)); // at the begin
    EXPECT_EQ(1, add(metric, 100, e1, a, value));
    EXPECT_EQ(0, add(metric, 100, e1, b, value));
    EXPECT_EQ(0, add(metric, 101, e1, a, value));
    EXPECT_EQ(0, add(metric, 100, e2, nullptr, value)); // only its own combination counts
    EXPECT_EQ(
        "WARNING: M: Timestamps must be monotonically increasing. Previous=100, current=100 for e1/A. Data "
        "discarded.\n",
        log.text().substr(0, log.text().find('\n') + 1));
    EXPECT_EQ((std::vector<const pwr::EntityHandle*>{e1, e2}), metric.getEntities());
    EXPECT_EQ((std::vector<const pwr::DataDescriptor*>{a, b}), metric.getDescriptors());
    Metric traced = make(Type::TracedEvent);
    EXPECT_EQ(0, add(traced, 200, e1, nullptr, Data("x")));
    EXPECT_EQ(1, add(traced, 200, e1, nullptr, Data("y")));
}

TEST_F(MetricTest, durationsAreGivenOrElapsed) {
    struct Case {
        Type type;
        std::uint64_t given;
        std::uint64_t expected;
    };
    // The second sample of e1/A, 40 ticks behind the first; e1 had a point 10 ticks before it.
    for (const Case& test : {Case{Type::SampledValue, 0, 40}, Case{Type::SampledValue, NONE, 0},
                             Case{Type::SampledDelta, 40, 40}, Case{Type::SampledDelta, 7, 7},
                             Case{Type::SampledResidency, 0, 10}, Case{Type::SampledResidency, 40, 10},
                             Case{Type::SampledResidency, NONE, 0}, Case{Type::TracedEvent, NONE, 40},
                             Case{Type::TracedValueTransition, 0, 40}, Case{Type::TracedEvent, 3, 3}}) {
        Metric metric = make(test.type);
        const Data nothing(std::uint64_t{0});
        add(metric, 200, e1, a, nothing);
        add(metric, 230, e1, b, nothing);
        DataElement element(e1, a);
        element.setValue(nothing);
        log.take();
        EXPECT_EQ(0, metric.setData(240, element, test.given));
        EXPECT_EQ(test.expected, element.getDuration());
        const bool isReset = test.type == Type::SampledResidency && test.given == 40;
        EXPECT_EQ(
            isReset
                ? "WARNING: M: Duration provided for MetricType::SampledResidency is greater than the time "
                  "elapsed since last sampling point for entity=e1. Resetting duration to be the time since "
                  "the last sampling point for e1.\n"
                : "",
            log.take());
    }
}

TEST_F(MetricTest, groupsEqualTimestampsIntoPoints) {
    Metric metric = make(Type::SampledValue);
    const auto recorder = std::make_shared<RecordingAccumulator>();
    EXPECT_EQ(0, metric.addAccumulator(recorder));
    Data hex(std::uint64_t{255});
    hex.setCustomFormatter(pwr::UIntFormatter(0, true));
    add(metric, 200, e1, a, Data(std::int64_t{-1}));
    EXPECT_TRUE(recorder->text.empty());
    EXPECT_EQ(1U, metric.getData().getElements().size());
    add(metric, 200, e1, nullptr, Data("text"), 50);
    add(metric, 200, e2, a, hex);
    add(metric, 300, e1, a, Data(2.5), NONE);
    EXPECT_EQ("begin\n200(100): e1/A=-1+100 e1/M=text+50 e2/A=0xff+100\n", recorder->text);
    add(metric, 250, e2, a, Data(1.0, 2.0)); // an earlier point ends the one before it as well
    add(metric, 300, e2, b, Data(std::uint64_t{3}));
    EXPECT_EQ(0, metric.finalize());
    EXPECT_EQ("begin\n200(100): e1/A=-1+100 e1/M=text+50 e2/A=0xff+100\n300(200): e1/A=2.50+0\n"
              "250(300): e2/A=1.00 -- 2.00+50\n300(250): e2/B=3+200\nend\n",
              recorder->text);
}

TEST_F(MetricTest, elementsOfPointsCanBeTakenAgain) {
    Metric metric = make(Type::SampledValue);
    add(metric, 200, e1, a, Data("text"));
    EXPECT_EQ(1U, metric.getData().getElements().size());
    add(metric, 300, e2, b, Data(1.0)); // takes the place of the text
    DataElement element = metric.getData().getElements()[0];
    EXPECT_EQ(0, metric.setData(400, element, 0));
    EXPECT_EQ(1, add(metric, 400, e2, b, Data(1.0)));
    EXPECT_EQ(0, add(metric, 300, e1, a, Data(1.0)));
}

TEST_F(MetricTest, tracedSamplesArePointsOfTheirOwn) {
    Metric metric = make(Type::TracedEvent);
    const auto recorder = std::make_shared<RecordingAccumulator>();
    metric.addAccumulator(recorder);
    add(metric, 200, e1, a, Data("x"));
    add(metric, 200, e2, a, Data("y"));
    EXPECT_EQ("begin\n200(100): e1/A=x+100\n200(200): e2/A=y+100\n", recorder->text);
}

TEST_F(MetricTest, disagreeingResidenciesCostTheirPoint) {
    Metric metric = make(Type::SampledResidency);
    const auto recorder = std::make_shared<RecordingAccumulator>();
    metric.addAccumulator(recorder);
    const Data ticks(std::uint64_t{1});
    add(metric, 200, e1, a, ticks, 100);
    add(metric, 200, e1, b, ticks, 90);
    add(metric, 200, e2, b, ticks);
    EXPECT_EQ("", log.take());
    add(metric, 300, e2, b, ticks);
    EXPECT_EQ(
        "WARNING: M: valid duration since the last sampling point for e1 = 100, but that provided for e1 in "
        "state B= 90. All data provided for the previous sampling point will be discarded.\n",
        log.take());
    EXPECT_EQ("", recorder->text);
    add(metric, 300, e1, a, Data(std::uint64_t{101}));
    EXPECT_EQ(
        "WARNING: M: Clock ticks spent by e1 in state A=101 is greater than the duration=100 since the last "
        "sampling point. Note this sample at timestamp=300 will be discarded.\n",
        log.take());
    metric.finalize();
    EXPECT_EQ("begin\n300(100): e2/B=1+100 e1/A=101+100\nend\n", recorder->text);
}

TEST_F(MetricTest, failingAccumulatorsAreNamedAndTheOthersGoOn) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"begin", "WARNING: Metric container M couldn't initialize an accumulator!\n"},
        {"point", "WARNING: Metric container M reports an accumulator processMessage error!\n"},
        {"end", "WARNING: Metric container M couldn't finalize an accumulator!\n"}};
    for (const auto& [where, warning] : cases) {
        Metric metric = make(Type::SampledValue);
        const auto failing = std::make_shared<RecordingAccumulator>();
        const auto next = std::make_shared<RecordingAccumulator>();
        failing->failsAt = where;
        metric.addAccumulator(failing);
        metric.addAccumulator(next);
        EXPECT_EQ(0, add(metric, 200, e1, a, Data(1.0)));
        EXPECT_EQ(where == "end" ? 1 : 0, metric.finalize());
        EXPECT_EQ(warning, log.take());
        EXPECT_EQ("begin\n200(100): e1/A=1.00+100\nend\n", next->text);
        EXPECT_EQ(1, metric.addAccumulator(next));
        EXPECT_EQ("WARNING: trying to add an accumulator to Metric container M after setting data?!\n",
                  log.take());
        EXPECT_EQ(1, metric.addAccumulator(nullptr));
        EXPECT_EQ("WARNING: trying to add a NULL accumulator to Metric container M?!\n", log.take());
    }
}

TEST_F(MetricTest, finalizesOnce) {
    Metric metric = make(Type::SampledValue);
    EXPECT_EQ(1, metric.finalize());
    EXPECT_EQ("WARNING: No data was provided for metric M\n", log.take());
    EXPECT_TRUE(capture.tables().empty());
    add(metric, 200, e1, a, Data(1.0));
    EXPECT_EQ(0, metric.finalize());
    const std::size_t tables = capture.tables().size();
    EXPECT_EQ(6U, tables);
    EXPECT_EQ(0, metric.finalize());
    EXPECT_EQ(tables, capture.tables().size());
    EXPECT_EQ(1, add(metric, 300, e1, a, Data(1.0)));
}

TEST_F(MetricTest, oneElementServesManyCombinationsAndContainers) {
    Metric first = make(Type::SampledValue);
    Metric second = make(Type::SampledValue);
    const auto recorder = std::make_shared<RecordingAccumulator>();
    second.addAccumulator(recorder);
    DataElement element(e1, a);
    for (std::uint64_t point = 200; point < 500; point += 100) {
        const auto next = point % 200 == 0 ? std::pair(e1, b) : std::pair(e2, a); // no order to rely on
        for (const auto& [entity, descriptor] : {std::pair(e1, a), next, std::pair(e2, b)}) {
            element.setEntity(entity);
            element.setDescriptor(descriptor);
            element.setValue(Data(point));
            EXPECT_EQ(0, first.setData(point, element, 0));
            EXPECT_EQ(0, second.setData(point, element, 0));
        }
    }
    second.finalize();
    EXPECT_EQ("begin\n200(100): e1/A=200+100 e1/B=200+100 e2/B=200+100\n300(200): e1/A=300+100 e2/A=300+200 "
              "e2/B=300+100\n400(300): e1/A=400+100 e1/B=400+200 e2/B=400+100\nend\n",
              recorder->text);
    EXPECT_EQ(1, element.setEntity(nullptr));
    EXPECT_EQ(1, element.setDescriptor(nullptr));
    EXPECT_EQ(1, element.setAdditionalInfo(nullptr));
    EXPECT_EQ(1, element.setValue(Data()));
    EXPECT_EQ(nullptr, element.getValue());
    EXPECT_EQ("WARNING: Please provide a valid entity.\nWARNING: Please provide a valid descriptor.\n"
              "WARNING: Please provide a valid DynamicAttributeValueManager.\n"
              "WARNING: Value is not set in the DataElement object. Returning an invalid Data object.\n",
              log.take());
}

} // namespace
