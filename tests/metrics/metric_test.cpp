#include <functional>
#include <stdexcept>

#include "common/model/field.h"
#include "common/plugin/plugin_environment.h"
#include "tests/metrics/metric_fixture.h"

using tests::Metric;
using tests::MetricTest;
using tests::Type;

namespace {

using pwr::Data;

std::string thrownBy(const std::function<void()>& work) {
    try {
        work();
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "nothing";
}

TEST_F(MetricTest, constructionNeedsStreamConfigurationAndTime) {
    EXPECT_EQ("Quantity for MetricType::SampledResidency metric must be pwr::Quantity::time()",
              thrownBy([&] { Metric("M", Type::SampledResidency, "C", "f", metadata, nullptr); }));
    pwr::WriterInterfaceConfigFileParser::destroy();
    EXPECT_EQ("Output config parser is not initialized", thrownBy([&] { make(Type::SampledValue); }));
    EXPECT_EQ(nullptr, pwr::WriterInterfaceConfigFileParser::current());
    g_pluginEnvironment->setWriterStream(nullptr);
    EXPECT_EQ("Writer stream is not initialized", thrownBy([&] { make(Type::SampledValue); }));
    Metric invalid("M", static_cast<Type>(5), "C", "f", metadata, nullptr);
    EXPECT_EQ("ERROR: pwr::Metric::Metric: Invalid Metric type 5\n", log.take());
    EXPECT_EQ(1, add(invalid, 200, e1, a, Data(1.0)));
    EXPECT_EQ("WARNING: M: Unrecognized metric type\n", log.take());
    Metric next("M", static_cast<Type>(200), "C", "f", metadata, nullptr);
    EXPECT_EQ(invalid.getId() + 1, next.getId());
}

TEST_F(MetricTest, requestedTablesComeFirstAndHiddenOnesNot) {
    struct Case {
        std::string lines;
        std::string keys;
    };
    for (const Case& test :
         {Case{"", "SAMPLE-COUNT MIN-MAX-AVG NUMBER-OF-OCCURENCES RELATIVE-FREQUENCY-PERCENTAGE MIN-MAX "
                   "APPROXIMATED-RESIDENCY "},
          Case{"MIN-MAX_TITLE_VALUE=T\nNONSENSE_TITLE_VALUE=T\nMIN-MAX-AVG_TABLE_VALUE=yes",
               "MIN-MAX SAMPLE-COUNT NUMBER-OF-OCCURENCES RELATIVE-FREQUENCY-PERCENTAGE "
               "APPROXIMATED-RESIDENCY "}}) {
        configure(test.lines);
        Metric metric = make(Type::SampledValue);
        add(metric, 200, e1, a, Data(1.0));
        finish(metric);
        std::string keys;
        for (const tests::TableText& table : capture.tables()) {
            keys += table.source.substr(4) + " ";
            EXPECT_EQ(metric.getId(), table.containerId);
        }
        EXPECT_EQ(test.keys, keys);
    }
    EXPECT_EQ("", log.take());
}

TEST_F(MetricTest, unconfiguredContainerWarnsOnce) {
    Metric metric("M", Type::SampledValue, "D", "g", metadata, nullptr);
    EXPECT_EQ("WARNING: Output config table entries not present for the feature-switch-tag and "
              "metric-container-tag "
              "combo: 'g_D'. Add table entries specific to Metric container type.\n",
              log.take());
    pwr::WriterInterfaceConfigFileParser::instance()->parseText("more", "ALL_D_MIN-MAX_TITLE_VALUE=T\n");
    Metric generic("M", Type::SampledValue, "D", "g", metadata, nullptr);
    EXPECT_EQ("", log.take());
    add(generic, 200, e1, a, Data(1.0));
    finish(generic);
    EXPECT_EQ("T", capture.tables().front().title);
}

TEST_F(MetricTest, finiteSetsAreCheckedWhole) {
    Metric metric = make(Type::SampledValue);
    Metric delta = make(Type::SampledDelta);
    const auto* one = describe("one", Data(std::int64_t{1}));
    const auto* two = describe("two", Data(std::int64_t{2}));
    const std::string mismatch =
        "WARNING: The data type of the finite set of possible valuesdoes not match what was "
        "provided previously\n";
    EXPECT_EQ(1, delta.setFiniteSetValues({one, nullptr}));
    EXPECT_EQ("WARNING: M: Please provide a valid pointer to DataDescriptor object.\n", log.take());
    EXPECT_EQ(1, delta.setFiniteSetValues({one}));
    EXPECT_EQ(
        "WARNING: M: Finite set of possible values can be provided only for MetricType::SampledValue or "
        "MetricType::TracedValueTransition metric types.\n",
        log.take());
    EXPECT_EQ(1, metric.setFiniteSetValues({one, describe("real", Data(1.0))}));
    EXPECT_EQ(1, metric.setFiniteSetValues({a}));
    EXPECT_EQ(mismatch + mismatch, log.take());
    EXPECT_TRUE(metric.getFiniteSetValues().empty());
    EXPECT_EQ(0, metric.setFiniteSetValues({two}));
    EXPECT_EQ(0, metric.setFiniteSetValues({one, two}));
    EXPECT_EQ((std::vector<Data>{Data(std::int64_t{2}), Data(std::int64_t{1})}), metric.getFiniteSetValues());
}

TEST_F(MetricTest, tellsWritersOfTimelinesAndStaticTables) {
    Metric residency = make(Type::SampledResidency);
    Metric value = make(Type::SampledValue);
    pwr::TableMessage table("static", nullptr);
    capture.writer.messages.clear();
    EXPECT_EQ(0, residency.addStaticTableRowInfo(&table));
    EXPECT_EQ(0, residency.setTimelineTableToDisplay(pwr::TimelineTableType::PERCENTAGE));
    EXPECT_EQ((std::vector<std::string>{"container: f/", "container: f/"}), capture.writer.messages);
    EXPECT_EQ(residency.getId(), table.getMetricContainerId());
    EXPECT_EQ("", log.take());
    EXPECT_EQ(0, value.setTimelineTableToDisplay(pwr::TimelineTableType::PERCENTAGE));
    EXPECT_EQ("WARNING: Warning: Timeline output table selection is only valid for "
              "MetricType::SampledResidency type "
              "metrics.\nThis request will be ignored.",
              log.take());
    EXPECT_EQ(2U, capture.writer.messages.size());
    EXPECT_EQ(1, value.setEntityDescriptorCombinations({{e1, a}, {nullptr, a}}));
    EXPECT_EQ("WARNING: M: Entity is required when setting entity-descriptor combinations.\n", log.take());
    EXPECT_EQ(0, value.setEntityDescriptorCombinations({{e1, nullptr}}));
    EXPECT_EQ(e1, value.getEntityDescriptorCombinations().at(0).entity);
}

TEST_F(MetricTest, tablesCarryLabelsNotesAndTitles) {
    showOnly({"MIN-MAX"});
    pwr::WriterInterfaceConfigFileParser::instance()->parseText(
        "more", "f_C_MIN-MAX_TITLE_VALUE=Own title\nf_C_MIN-MAX_PRE-TABLE-TEXT_VALUE=before\n"
                "f_C_MIN-MAX_POST-TABLE-TEXT_VALUE=after\n");
    Metric metric = make(Type::SampledValue, pwr::Quantity::temperature());
    metric.setEntityGroupInfo(pwr::FieldDescription("Device"));
    metric.setDescriptorGroupInfo(pwr::FieldDescription("Sensor"));
    metric.setPreMetricTextInfo("container");
    const auto* child = pwr::EntityHandle::create("core 0", e2);
    add(metric, 200, child, b, Data(std::uint64_t{3}));
    add(metric, 200, e1, a, Data(std::uint64_t{1}));
    add(metric, 200, e1, nullptr, Data(std::uint64_t{2}));
    EXPECT_EQ("Own title\nDevice | Sensor | Min (oC) | Max (oC)\ne1 | <N/A> | 2 | 2\ne1 | A | 1 | 1\n"
              "e2/core 0 | B | 3 | 3\n\n",
              finish(metric));
    EXPECT_EQ((std::vector<std::string>{"container", "before"}), capture.tables().at(0).preNotes);
    EXPECT_EQ((std::vector<std::string>{"after"}), capture.tables().at(0).postNotes);
    EXPECT_TRUE(e1->getChildren().empty());
    EXPECT_EQ("", log.take());
}

} // namespace
