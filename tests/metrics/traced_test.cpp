#include "common/model/event.h"
#include "common/model/field.h"
#include "tests/metrics/metric_fixture.h"

using tests::Metric;
using tests::MetricTest;
using tests::Type;

namespace {

using pwr::Data;

Data state(std::uint64_t number) {
    return Data(number);
}

TEST_F(MetricTest, transitionsChargeTheStateThatIsLeft) {
    metadata.twaClockFreq = 0.001F; // a tick is a millisecond
    metadata.stopTSC = 500;
    Metric metric = make(Type::TracedValueTransition);
    add(metric, 200, e1, nullptr, state(7));     // unknown before
    add(metric, 230, e1, nullptr, state(6));     // 30 in 7
    add(metric, 300, e2, nullptr, state(6));     //
    add(metric, 300, e1, nullptr, state(7), 50); // 50 of the 70 in 6
    add(metric, 500, e2, nullptr, state(6));     // 200 in 6; nothing is left
    EXPECT_EQ(
        "M Summary: Residency (Percentage)\nEntity | State | Residency (%)\n"
        "e1 | 6 | 17.86\ne1 | 7 | 82.14\ne2 | 6 | 100.00\n\n"
        "M Summary: Residency (Time)\nEntity | State | Residency (msec)\n"
        "e1 | 6 | 50.00\ne1 | 7 | 230.00\ne2 | 6 | 200.00\n\n"
        "M Summary: Entry Counts\nEntity | State | Entry Count\ne1 | 6 | 1\ne1 | 7 | 2\ne2 | 6 | 2\n\n"
        "M Summary: Residency (Percentage and Time)\nEntity | State | Residency (%) | Residency (msec)\n"
        "e1 | 6 | 17.86 | 50.00\ne1 | 7 | 82.14 | 230.00\ne2 | 6 | 100.00 | 200.00\n\n",
        finish(metric));
    EXPECT_EQ("", log.take());
}

TEST_F(MetricTest, declaredStatesAreListedAndOthersOnlyTakeTime) {
    showOnly({"RESIDENCY-PERCENTAGE", "TRANSITION-COUNTS"});
    pwr::WriterInterfaceConfigFileParser::instance()->parseText(
        "more", "f_C_TRANSITION-COUNTS_TRANSPOSE_VALUE=YES\n");
    Metric metric = make(Type::TracedValueTransition);
    metric.setFiniteSetValues({describe("b", Data("busy")), describe("i", Data("idle"))});
    metric.setValueGroupInfo(pwr::FieldDescription("Mode"));
    add(metric, 200, e1, nullptr, Data("lost"));
    add(metric, 275, e1, nullptr, Data("idle")); // 75 in a state without a row
    add(metric, 300, e1, nullptr, Data("idle"));
    EXPECT_EQ("M Summary: Entry Counts\nEntity | busy | idle\ne1 | 0 | 2\n\n"
              "M Summary: Residency (Percentage)\nEntity | Mode | Residency (%)\n"
              "e1 | busy | 0.00\ne1 | idle | 25.00\n\n",
              finish(metric));
}

TEST_F(MetricTest, statesOfOneTextKeepTheirColumns) {
    configure("TRANSITION-COUNTS_TRANSPOSE_VALUE=YES");
    Metric metric = make(Type::TracedValueTransition);
    add(metric, 200, e1, nullptr, Data(1.001));
    add(metric, 300, e1, nullptr, Data(1.004));
    add(metric, 400, e1, nullptr, Data(1.001));
    EXPECT_NE(std::string::npos, finish(metric).find("Entity | 1.00 | 1.00\ne1 | 2 | 1\n"));
}

TEST_F(MetricTest, onlyStateOfAnEntityIsWhereItAlwaysWas) {
    showOnly({"RESIDENCY-COMBINED"});
    Metric metric = make(Type::TracedValueTransition);
    add(metric, 200, e1, nullptr, Data("on"));
    EXPECT_EQ(
        "M Summary: Residency (Percentage and Time)\nEntity | State | Residency (%) | Residency (msec)\n"
        "e1 | on | 100.00 | 0.00\n\n",
        finish(metric));
}

TEST_F(MetricTest, eventsAreCountedByName) {
    Metric metric = make(Type::TracedEvent);
    const pwr::Event* event = pwr::Event::create(pwr::Description("read", ""));
    add(metric, 1100, e1, a, Data(*static_cast<const pwr::DataHandle*>(event)));
    add(metric, 2100, e1, a, Data("write"));
    add(metric, 5100, e1, a, Data("read"));
    add(metric, 6100, e2, nullptr, Data("write"));
    EXPECT_EQ("M Summary: Total Samples Received\nEntity | Descriptor | Total # of samples | Min sampling "
              "interval (msec) "
              "| Max sampling interval (msec) | Avg sampling interval (msec)\n"
              "e2 | <N/A> | 1 | 6.00 | 6.00 | 6.00\ne1 | A | 3 | 1.00 | 3.00 | 1.67\n\n"
              "M Summary: Type Count\nEntity | Descriptor | Event | Count\n"
              "e2 | <N/A> | write | 1\ne1 | A | read | 2\ne1 | A | write | 1\n\n"
              "M Summary: Top 10 Most-Frequent for e2\nEntity | Event | Count\ne2 | write | 1\n\n"
              "M Summary: Top 10 Most-Frequent for e1 and A\nEntity | Descriptor | Event | Count\n"
              "e1 | A | read | 2\ne1 | A | write | 1\n\n",
              finish(metric));
    EXPECT_EQ("", log.take());
}

TEST_F(MetricTest, topTableListsTenNamesTheMostFrequentFirst) {
    showOnly({"TOP-TEN-EVENT"});
    pwr::WriterInterfaceConfigFileParser::instance()->parseText("more",
                                                                "f_C_TOP-TEN-EVENT_TITLE_VALUE=Top\n");
    Metric metric = make(Type::TracedEvent);
    std::uint64_t timestamp = 200;
    for (const std::string name :
         {"l", "k", "j", "i", "h", "g", "f", "e", "d", "c", "b", "a", "k", "l", "l"}) {
        add(metric, ++timestamp, e1, nullptr, Data(name));
    }
    EXPECT_EQ(
        "Top for e1\nEntity | Event | Count\ne1 | l | 3\ne1 | k | 2\ne1 | a | 1\ne1 | b | 1\ne1 | c | 1\n"
        "e1 | d | 1\ne1 | e | 1\ne1 | f | 1\ne1 | g | 1\ne1 | h | 1\n\n",
        finish(metric));
}

} // namespace
