#include <cmath>

#include "common/metrics/sampled_residency_accumulator.h"
#include "tests/metrics/metric_fixture.h"

using tests::Metric;
using tests::MetricTest;
using tests::Type;

namespace {

using pwr::Data;
using pwr::Quantity;

Data ticks(std::uint64_t count) {
    return Data(count);
}

TEST_F(MetricTest, residenciesAreSharesOfTheTimeOfTheEntity) {
    metadata.twaClockFreq = 0.001F; // a tick is a millisecond
    Metric metric = make(Type::SampledResidency);
    add(metric, 200, e1, a, ticks(30));
    add(metric, 200, e1, b, ticks(70));
    add(metric, 300, e2, a, ticks(50));  // e1 is absent, and e2 was sampled over 200 ticks
    add(metric, 400, e1, b, ticks(999)); // impossible: neither counts nor meets e1
    add(metric, 400, e1, a, ticks(100));
    log.take();
    EXPECT_EQ(
        "M Summary - Sampled: Total Samples Received\nEntity | Descriptor | Total # of samples | Min "
        "sampling "
        "interval (msec) | Max sampling interval (msec) | Avg sampling interval (msec)\n"
        "e1 | A | 2 | 100.00 | 200.00 | 150.00\ne1 | B | 2 | 100.00 | 200.00 | 150.00\n"
        "e2 | A | 1 | 200.00 | 200.00 | 200.00\n\n"
        "M Summary: Residency (Percentage)\nEntity | State | Residency (%)\n"
        "e1 | A | 43.33\ne1 | B | 23.33\ne2 | A | 25.00\n\n"
        "M Summary: Residency (Time)\nEntity | State | Residency (msec)\n"
        "e1 | A | 130.00\ne1 | B | 70.00\ne2 | A | 50.00\n\n"
        "M Summary: Residency (Percentage and Time)\nEntity | State | Residency (%) | Residency (msec)\n"
        "e1 | A | 43.33 | 130.00\ne1 | B | 23.33 | 70.00\ne2 | A | 25.00 | 50.00\n\n",
        finish(metric));
    EXPECT_EQ("", log.take());
}

TEST_F(MetricTest, transposedResidenciesHaveColumnsForEachState) {
    showOnly({"RESIDENCY-COMBINED"});
    pwr::WriterInterfaceConfigFileParser::instance()->parseText(
        "more", "f_C_RESIDENCY-COMBINED_TRANSPOSE_VALUE=YES\n");
    metadata.twaClockFreq = 0.0F;
    Metric metric = make(Type::SampledResidency);
    add(metric, 200, e2, b, ticks(30));
    add(metric, 200, e1, b, ticks(0), NONE); // no duration, no share
    add(metric, 200, e2, a, ticks(70));
    EXPECT_EQ("M Summary: Residency (Percentage and Time)\nEntity | B (%) | B (msec) | A (%) | A (msec)\n"
              "e1 | <N/A> | <N/A> | <N/A> | <N/A>\ne2 | 30.00 | <N/A> | 70.00 | <N/A>\n\n",
              finish(metric));
    EXPECT_EQ("", log.take());
}

TEST_F(MetricTest, residenciesWithoutUsableSamplesGiveEmptyTables) {
    showOnly({"RESIDENCY-PERCENTAGE"});
    Metric metric = make(Type::SampledResidency);
    add(metric, 200, e1, a, ticks(10), 100);
    add(metric, 200, e1, b, ticks(10), 50);
    log.take();
    EXPECT_EQ(0U, finish(metric).find("M Summary: Residency (Percentage)\nEntity | Residency (%)\n"));
    EXPECT_EQ("WARNING: M: valid duration since the last sampling point for e1 = 100, but that provided for "
              "e1 in state "
              "B= 50. All data provided for the previous sampling point will be discarded.\n"
              "WARNING: An empty residency summary table will be generated for Metric container M.\n",
              log.take());
}

TEST_F(MetricTest, residencyAccumulatorOfAnotherContainerTakesOnlyTicks) {
    showOnly({});
    Metric metric = make(Type::SampledValue);
    metric.addAccumulator(
        std::make_shared<pwr::SampledResidencyAccumulator>(std::vector<std::uint32_t>{1}, metric));
    add(metric, 200, e1, a, Data(1.0));
    add(metric, 200, e1, nullptr, ticks(1));
    add(metric, 200, e1, b, ticks(25));
    EXPECT_EQ("M Summary: Residency (Percentage)\nEntity | State | Residency (%)\ne1 | B | 25.00\n\n",
              finish(metric));
    EXPECT_EQ(
        "WARNING: M: MetricType::SampledResidency metric type is requiredto have values of type pw_u64_t\n"
        "WARNING: MetricType::SampledResidency: Descriptor is not valid\n",
        log.take());
}

TEST_F(MetricTest, deltasAreTotalsAndRates) {
    metadata.twaClockFreq = 1000.0F;
    const std::string rateTitle = "M Summary: Average Rate and Total\n";
    struct Case {
        const char* name;
        const Quantity* quantity;
        std::vector<Data> amounts; // one a second
        std::string columns;
        std::string row;
        std::string warning;
    };
    const std::string disabled =
        "WARNING: Quantity and rate conversion are not specified. Disabling rate calculations.\n";
    const std::uint64_t top = 0xFFFFFFFFFFFFFFFF;
    const std::vector<Case> cases = {
        {"bytes",
         Quantity::data(),
         {ticks(400000000), ticks(600000000)},
         "Average Rate (MB/s) | Total (bytes)",
         "500.00 | 1000000000",
         ""},
        {"negative",
         Quantity::energy(),
         {Data(std::int64_t{-3}), Data(std::int64_t{4})},
         "Average Rate (mW) | Total (mJ)",
         "0.50 | 1",
         ""},
        {"real and integers",
         Quantity::energy(),
         {Data(1.5), Data(std::int64_t{1}), ticks(2)},
         "Average Rate (mW) | Total (mJ)",
         "1.50 | 4.50",
         ""},
        {"sums wrap",
         Quantity::energy(),
         {ticks(top), ticks(3)},
         "Average Rate (mW) | Total (mJ)",
         "1.00 | 2",
         ""},
        {"no quantity", nullptr, {ticks(7)}, "Average Rate | Total", "<N/A> | 7", disabled},
        {"no rate", Quantity::temperature(), {ticks(7)}, "Average Rate | Total (oC)", "<N/A> | 7", disabled},
        {"range",
         Quantity::energy(),
         {Data(1.0, 2.0), Data(3.0, 5.0)},
         "Average Rate (mW) | Total (mJ)",
         "<N/A> | 4.00 -- 7.00",
         "WARNING: couldn't convert e1/A to real!\n"},
        {"not a number",
         Quantity::energy(),
         {Data(std::nan(""))},
         "Average Rate (mW) | Total (mJ)",
         "<N/A> | <N/A>",
         ""},
        {"other type",
         Quantity::energy(),
         {ticks(7), Data(1.5)},
         "Average Rate (mW) | Total (mJ)",
         "3.50 | 7",
         "WARNING: Accumulator must have UINT type as input\n"},
    };
    showOnly({"AVERAGE-RATE-TOTAL", "TOTAL-DELTA"});
    for (const Case& test : cases) {
        Metric metric = make(Type::SampledDelta, test.quantity);
        std::uint64_t timestamp = metadata.startTSC;
        for (const Data& amount : test.amounts) {
            add(metric, timestamp += 1000000000, e1, a, amount);
        }
        finish(metric);
        ASSERT_EQ(2U, capture.tables().size()) << test.name;
        EXPECT_EQ(rateTitle + "Entity | Descriptor | " + test.columns + "\ne1 | A | " + test.row + "\n",
                  capture.tables()[0].text())
            << test.name;
        EXPECT_EQ("M Summary: Total\nEntity | Descriptor | " +
                      test.columns.substr(test.columns.find("Total")) + "\ne1 | A | " +
                      test.row.substr(test.row.find('|') + 2) + "\n",
                  capture.tables()[1].text())
            << test.name;
        EXPECT_EQ(test.warning, log.take()) << test.name;
    }
}

TEST_F(MetricTest, deltaRatesNeedTime) {
    showOnly({"AVERAGE-RATE-TOTAL"});
    pwr::WriterInterfaceConfigFileParser::instance()->parseText(
        "more", "f_C_AVERAGE-RATE-TOTAL_TRANSPOSE_VALUE=YES\n");
    Metric metric = make(Type::SampledDelta, Quantity::operations());
    add(metric, 1100, e1, a, ticks(2)); // a millisecond
    add(metric, 1100, e2, a, ticks(2), NONE);
    add(metric, 1100, e2, nullptr, ticks(3));
    EXPECT_EQ("M Summary: Average Rate and Total\nEntity | A Average Rate (Ops/sec) | A Total (OpsCount) | "
              "Average Rate "
              "(Ops/sec) | Total (OpsCount)\n"
              "e1 | 2000.00 | 2 | <N/A> | <N/A>\ne2 | <N/A> | 2 | 3000.00 | 3\n\n",
              finish(metric));
}

} // namespace
