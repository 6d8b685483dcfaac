#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "common/config/writer_interface_configfile_parser.h"
#include "common/metadata/system_metadata.h"
#include "common/metrics/accumulator.h"
#include "common/metrics/metric.h"
#include "common/model/data_descriptor.h"
#include "common/model/entity_handle.h"
#include "common/values/quantity.h"
#include "tests/support/log_capture.h"
#include "tests/support/table_text.h"

namespace tests {

using pwr::Data;
using pwr::DataElement;
using pwr::Metric;
using Type = pwr::Metric::MetricType;

/// A collection that begins at 100 on a clock of 1 MHz (1000 ticks a millisecond), with a writer that keeps tables.
class MetricTest : public ::testing::Test {
protected:
    static constexpr std::uint64_t NONE = Metric::NO_DURATION;

    MetricTest() {
        metadata.startTSC = 100;
        metadata.twaClockFreq = 1.0F;
        configure("");
    }
    ~MetricTest() override { pwr::WriterInterfaceConfigFileParser::destroy(); }

    /// Lines of the output configuration for the container below, without their "f_C_". The others make feature and
    /// container known, so that nothing warns.
    static void configure(const std::string& lines) {
        std::string text =
            "ALL_OUTPUT-ORDER_TAG_FEATURE_ORDER=f\nALL_f_TAG_TABLE_ORDER=C\nf_C_OTHER_TITLE_VALUE=\n";
        for (std::size_t at = 0; at < lines.size();) {
            const std::size_t end = lines.find('\n', at);
            text += "f_C_" + lines.substr(at, end - at) + "\n";
            at = end == std::string::npos ? lines.size() : end + 1;
        }
        pwr::WriterInterfaceConfigFileParser::destroy();
        pwr::WriterInterfaceConfigFileParser::instance()->parseText("test", text);
    }
    /// Shows only these tables of SampledValue, in the order of the type.
    static void showOnly(const std::set<std::string>& keys) {
        std::string lines;
        for (const char* key :
             {"SAMPLE-COUNT", "MIN-MAX-AVG", "NUMBER-OF-OCCURENCES", "RELATIVE-FREQUENCY-PERCENTAGE",
              "MIN-MAX", "APPROXIMATED-RESIDENCY", "RESIDENCY-PERCENTAGE", "RESIDENCY-MILLISECOND",
              "RESIDENCY-COMBINED", "TRANSITION-COUNTS", "AVERAGE-RATE-TOTAL", "TOTAL-DELTA",
              "EVENT-NAME-COUNTS", "TOP-TEN-EVENT"}) {
            lines += keys.contains(key) ? "" : std::string(key) + "_TABLE_VALUE=NO\n";
        }
        configure(lines);
    }
    Metric make(Type type, const pwr::Quantity* quantity = nullptr) {
        const pwr::Quantity* used = type == Type::SampledResidency ? pwr::Quantity::time() : quantity;
        return Metric("M", type, "C", "f", metadata, used);
    }
    static const pwr::DataDescriptor* describe(const std::string& name, const Data& value = Data()) {
        return pwr::DataDescriptorBuilder(name).setValue(value).build();
    }
    static int add(Metric& metric, std::uint64_t timestamp, const pwr::EntityHandle* entity,
                   const pwr::DataDescriptor* descriptor, const Data& value, std::uint64_t duration = 0) {
        DataElement element(entity, descriptor);
        element.setValue(value);
        return metric.setData(timestamp, element, duration);
    }
    /// The tables of the container.
    std::string finish(Metric& metric) {
        capture.writer.tables.clear();
        metric.finalize();
        return capture.text();
    }

    pwr::LogCapture log;
    TableCapture capture;
    pwr::SystemMetadata metadata;
    const pwr::EntityHandle* e1 = pwr::EntityHandle::create("e1", nullptr);
    const pwr::EntityHandle* e2 = pwr::EntityHandle::create("e2", nullptr);
    const pwr::DataDescriptor* a = describe("A");
    const pwr::DataDescriptor* b = describe("B");
};

/// Writes down what it is given: "begin", then "timestamp(previous): entity/descriptor=value+duration ...".
class RecordingAccumulator : public pwr::Accumulator {
public:
    int initialize(Metric&, const pwr::SystemMetadata&) override {
        text += "begin\n";
        return failsAt == "begin" ? 1 : 0;
    }
    int processMessage(Metric& metric) override {
        const pwr::DataPoint& point = metric.getData();
        text +=
            std::to_string(point.getTimestamp()) + "(" + std::to_string(point.getPreviousTimestamp()) + "):";
        for (const DataElement& element : point.getElements()) {
            std::string value;
            element.getValue()->toFormattedString(value);
            text += " " + element.getEntity()->getName() + "/" + element.getOrvexDescriptor()->getName() +
                    "=" + value + "+" + std::to_string(element.getDuration());
        }
        text += "\n";
        return failsAt == "point" ? 1 : 0;
    }
    int finalize(Metric&) override {
        text += "end\n";
        return failsAt == "end" ? 1 : 0;
    }

    std::string text;
    std::string failsAt;
};

} // namespace tests
