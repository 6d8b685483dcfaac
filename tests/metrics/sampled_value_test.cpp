#include <cmath>

#include "common/values/formatter.h"
#include "tests/metrics/metric_fixture.h"

using tests::Metric;
using tests::MetricTest;
using tests::Type;

namespace {

using pwr::Data;

/// Values of one row with the time that each stands for.
using Samples = std::vector<std::pair<Data, std::uint64_t>>;

TEST_F(MetricTest, valueTablesOfTwoRows) {
    Metric metric = make(Type::SampledValue, pwr::Quantity::power());
    // e1/A: 10 for 1 ms, 30 for 3 ms, 10 for 1 ms; e2: 20 once, for 2 ms.
    add(metric, 1100, e1, a, Data(std::int64_t{10}));
    add(metric, 2100, e2, nullptr, Data(std::int64_t{20}));
    add(metric, 4100, e1, a, Data(std::int64_t{30}));
    add(metric, 5100, e1, a, Data(std::int64_t{10}));
    EXPECT_EQ("M Summary - Sampled: Total Samples Received\n"
              "Entity | Descriptor | Total # of samples | Min sampling interval (msec) | Max sampling "
              "interval (msec) | "
              "Avg sampling interval (msec)\n"
              "e2 | <N/A> | 1 | 2.00 | 2.00 | 2.00\n"
              "e1 | A | 3 | 1.00 | 3.00 | 1.67\n\n"
              "M Summary - Sampled: Min/Max/Avg\n"
              "Entity | Descriptor | Min (mW) | Max (mW) | Avg (mW) | Time-weighted Avg (mW)\n"
              "e2 | <N/A> | 20 | 20 | 20.00 | 20.00\n"
              "e1 | A | 10 | 30 | 16.67 | 22.00\n\n"
              "M Summary - Sampled: Counts\n"
              "Entity | Descriptor | 10 | 20 | 30\n"
              "e2 | <N/A> | 0 | 1 | 0\n"
              "e1 | A | 2 | 0 | 1\n\n"
              "M Summary - Sampled: Sample Distribution\n"
              "Entity | Descriptor | 10 (%) | 20 (%) | 30 (%)\n"
              "e2 | <N/A> | 0.00 | 100.00 | 0.00\n"
              "e1 | A | 66.67 | 0.00 | 33.33\n\n"
              "M Summary - Sampled: Min/Max\n"
              "Entity | Descriptor | Min (mW) | Max (mW)\n"
              "e2 | <N/A> | 20 | 20\n"
              "e1 | A | 10 | 30\n\n"
              "M Summary - Sampled: Approximated Residency (Percentage)\n"
              "Entity | Descriptor | 10 (%) | 20 (%) | 30 (%)\n"
              "e2 | <N/A> | 0.00 | 100.00 | 0.00\n"
              "e1 | A | 40.00 | 0.00 | 60.00\n\n",
              finish(metric));
    EXPECT_EQ("", log.take());
}

TEST_F(MetricTest, statisticsFollowTheRulesOfTheirType) {
    struct Case {
        const char* name;
        Samples samples;
        std::string row;
    };
    const std::uint64_t top = 0xFFFFFFFFFFFFFFFF;
    const std::int64_t lowest = std::numeric_limits<std::int64_t>::min();
    const std::vector<Case> cases = {
        {"int extremes",
         {{Data(lowest), 1}, {Data(-(lowest + 1)), 3}},
         "-9223372036854775808 | 9223372036854775807 | -0.50 | 4611686018427387904.00"},
        {"uint sums wrap",
         {{Data(top), 1}, {Data(std::uint64_t{3}), 1}},
         "3 | 18446744073709551615 | 1.00 | 9223372036854775808.00"},
        {"real", {{Data(1.5), 1}, {Data(-0.5), 3}}, "-0.50 | 1.50 | 0.50 | 0.00"},
        {"negative reals keep the seed", {{Data(-3.0), 1}, {Data(-1.0), 1}}, "-3.00 | 0.00 | -2.00 | -2.00"},
        {"not a number", {{Data(std::nan("")), 1}, {Data(4.0), 1}}, "4.00 | 4.00 | <N/A> | <N/A>"},
        {"other types are only counted",
         {{Data(std::int64_t{4}), 1}, {Data("x"), 1}, {Data(std::int64_t{6}), 1}},
         "4 | 6 | 3.33 | 5.00"},
    };
    showOnly({"MIN-MAX-AVG"});
    for (const Case& test : cases) {
        Metric metric = make(Type::SampledValue);
        std::uint64_t timestamp = metadata.startTSC;
        for (const auto& [value, duration] : test.samples) {
            timestamp += duration;
            add(metric, timestamp, e1, nullptr, value);
        }
        const std::string text = finish(metric);
        EXPECT_EQ("Entity | Min | Max | Avg | Time-weighted Avg\ne1 | " + test.row + "\n\n",
                  text.substr(text.find('\n') + 1))
            << test.name;
    }
    EXPECT_EQ("", log.take());
}

TEST_F(MetricTest, maximumOfNegativeRealsIsTheSmallestPositiveNumber) {
    class MaximumReader : public WriterPlugin {
    public:
        MaximumReader() : WriterPlugin("maximum") {}
        const char* getDescription() const override { return ""; }
        int flushResults() override { return 0; }
        double maximum = 0.0;

    private:
        int writeMessage(const pwr::TableMessage& table) override {
            const Data* cell = table.getTableKey() == "MIN-MAX" ? table.findCell(0, 2) : nullptr;
            return cell != nullptr ? cell->toReal(maximum) : 1;
        }
    };
    MaximumReader reader;
    std::set<WriterPlugin*> plugins{&reader};
    WriterStream* stream = pwr::WriterStreamHost::create(plugins);
    g_pluginEnvironment->setWriterStream(stream);
    Metric metric = make(Type::SampledValue);
    add(metric, 200, e1, nullptr, Data(-3.0));
    metric.finalize();
    EXPECT_EQ(2.2250738585072014e-308, reader.maximum);
    pwr::WriterStreamHost::destroy(stream);
}

TEST_F(MetricTest, samplesWithoutWeightWarnAndHaveNoWeightedAverage) {
    showOnly({"MIN-MAX-AVG", "APPROXIMATED-RESIDENCY"});
    Metric metric = make(Type::SampledValue);
    add(metric, 200, e1, nullptr, Data(1.0), NONE);
    add(metric, 300, e1, nullptr, Data(3.0), NONE);
    EXPECT_EQ("WARNING: SampledValueAccumulator has zero weight!\n",
              log.take()); // the open point has not been seen
    EXPECT_EQ("M Summary - Sampled: Min/Max/Avg\nEntity | Min | Max | Avg | Time-weighted Avg\n"
              "e1 | 1.00 | 3.00 | 2.00 | <N/A>\n\n"
              "M Summary - Sampled: Approximated Residency (Percentage)\nEntity | 1.00 (%) | 3.00 (%)\n"
              "e1 | <N/A> | <N/A>\n\n",
              finish(metric));
    EXPECT_EQ("WARNING: SampledValueAccumulator has zero weight!\n", log.take());
}

TEST_F(MetricTest, finiteSetsHeadTheColumnsAndOthersOnlyCount) {
    showOnly({"NUMBER-OF-OCCURENCES", "RELATIVE-FREQUENCY-PERCENTAGE"});
    Metric metric = make(Type::SampledValue);
    metric.setFiniteSetValues({describe("on", Data("on")), describe("off", Data("off"))});
    for (std::uint64_t i = 0; i < 40; ++i) { // more than wait in a buffer
        add(metric, 200 + i, e1, nullptr, Data(i % 4 == 0 ? "off" : (i % 4 == 1 ? "dim" : "broken")));
    }
    metric.setFiniteSetValues({describe("dim", Data("dim"))}); // what came before counts as well
    EXPECT_EQ("M Summary - Sampled: Counts\nEntity | on | off | dim\ne1 | 0 | 10 | 10\n\n"
              "M Summary - Sampled: Sample Distribution\nEntity | on (%) | off (%) | dim (%)\n"
              "e1 | 0.00 | 25.00 | 25.00\n\n",
              finish(metric));
}

TEST_F(MetricTest, textAndRangesHaveNoExtremes) {
    for (const Data& value : {Data("x"), Data(1.0, 2.0), Data(*static_cast<const pwr::DataHandle*>(e2))}) {
        showOnly({"MIN-MAX-AVG", "MIN-MAX", "NUMBER-OF-OCCURENCES"});
        Metric metric = make(Type::SampledValue);
        add(metric, 200, e1, nullptr, value);
        std::string name;
        value.toFormattedString(name);
        EXPECT_EQ("M Summary - Sampled: Counts\nEntity | " + name + "\ne1 | 1\n\n", finish(metric));
        const std::string warning = "WARNING: Unable to provide min/max/avg summary for non-numeric data.\n";
        EXPECT_EQ(warning + warning, log.take());
    }
}

TEST_F(MetricTest, distinctValuesOfManySamplesAndTypes) {
    showOnly({"NUMBER-OF-OCCURENCES"});
    Metric metric = make(Type::SampledValue);
    Data hex(std::uint64_t{0});
    hex.setCustomFormatter(pwr::UIntFormatter(0, true));
    const Data others[] = {Data(0.5), Data("t")};
    for (std::uint64_t i = 0; i < 100; ++i) {
        hex.setValue(i % 20 == 0 ? 255 : 10 + i % 5);
        add(metric, 200 + i, e1, nullptr, i % 10 == 3 ? others[i / 10 % 2] : hex);
    }
    EXPECT_EQ("M Summary - Sampled: Counts\nEntity | 0xa | 0xb | 0xc | 0xd | 0xe | 0xff | 0.50 | t\n"
              "e1 | 15 | 20 | 20 | 10 | 20 | 5 | 5 | 5\n\n",
              finish(metric));
}

TEST_F(MetricTest, tooManyDistinctValuesAreGivenUp) {
    showOnly({"MIN-MAX", "NUMBER-OF-OCCURENCES"});
    const std::uint64_t limit = 65536;
    for (const std::uint64_t count : {limit, limit + 1}) {
        Metric metric = make(Type::SampledValue);
        for (std::uint64_t i = 0; i < count; ++i) {
            add(metric, 200 + i, e1, nullptr, Data(i));
        }
        finish(metric);
        EXPECT_EQ(count == limit
                      ? ""
                      : "WARNING: M: More than 65536 distinct values. The tables of counts, sample "
                        "distribution and approximated residency are given up.\n",
                  log.take());
        EXPECT_EQ(count == limit ? 2U : 1U, capture.tables().size());
        EXPECT_EQ("e1 | 0 | " + std::to_string(count - 1), capture.tables().back().rows.at(0));
    }
}

TEST_F(MetricTest, transposedStatisticsHaveOneRowForEachEntity) {
    showOnly({"MIN-MAX"});
    pwr::WriterInterfaceConfigFileParser::instance()->parseText("more", "f_C_MIN-MAX_TRANSPOSE_VALUE=YES\n");
    Metric metric = make(Type::SampledValue);
    add(metric, 200, e1, b, Data(std::uint64_t{1}));
    add(metric, 200, e1, a, Data(std::uint64_t{2}));
    add(metric, 200, e2, a, Data(std::uint64_t{3}));
    EXPECT_EQ("M Summary - Sampled: Min/Max\nEntity | B Min | B Max | A Min | A Max\ne1 | 1 | 1 | 2 | 2\n"
              "e2 | <N/A> | <N/A> | 3 | 3\n\n",
              finish(metric));
}

} // namespace
