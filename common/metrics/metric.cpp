#include "common/metrics/metric.h"

#include <algorithm>
#include <deque>
#include <stdexcept>

#include "common/config/writer_interface_configfile_parser.h"
#include "common/metadata/system_metadata.h"
#include "common/metrics/accumulator.h"
#include "common/metrics/metric_fields.h"
#include "common/metrics/metric_types.h"
#include "common/model/data_descriptor.h"
#include "common/model/field.h"
#include "common/plugin/logger.h"
#include "common/plugin/plugin_environment.h"
#include "common/values/quantity.h"
#include "common/writer/writer_stream.h"

namespace pwr {

// Users of the shared library on Windows may take its address.
constexpr std::uint64_t Metric::NO_DURATION; // NOLINT(readability-redundant-declaration)

namespace {

std::uint32_t nextContainerId = 0;

/// The requested keys that the type has, in their order, then the type's others.
std::vector<std::uint32_t> orderSummaries(std::span<const char* const> selectors,
                                          const std::deque<std::string>& request) {
    std::vector<std::uint32_t> summaries;
    const auto select = [&](std::size_t position) {
        const auto number = static_cast<std::uint32_t>(position);
        if (std::find(summaries.begin(), summaries.end(), number) == summaries.end()) {
            summaries.push_back(number);
        }
    };
    for (const std::string& key : request) {
        const auto found = std::find(selectors.begin(), selectors.end(), key);
        if (found != selectors.end()) {
            select(static_cast<std::size_t>(found - selectors.begin()));
        }
    }
    for (std::size_t position = 0; position < selectors.size(); ++position) {
        select(position);
    }
    return summaries;
}

} // namespace

Accumulator::Accumulator() = default;
Accumulator::~Accumulator() = default;

double MetricAccess::ticksPerMillisecond(const Metric& metric) {
    return static_cast<double>(metric.getSystemMetadata().twaClockFreq) * 1000.0;
}

Metric::Metric(const std::string& name, MetricType type, const std::string& metricContainerTag,
               const std::string& featureSwitchTag, const SystemMetadata& metadata, const Quantity* quantity)
    : m_fields(std::make_unique<Fields>(*this, name, type, metadata, quantity, nextContainerId++)) {
    m_fields->containerTag = metricContainerTag;
    m_fields->featureTag = featureSwitchTag;
    m_fields->rules = findMetricTypeRules(type);
    if (m_fields->rules == nullptr) {
        logError("ERROR: %s: Invalid Metric type %d\n", "pwr::Metric::Metric", static_cast<int>(type));
        return;
    }
    init();
}

Metric::~Metric() = default;

void Metric::init() {
    Fields& fields = *m_fields;
    fields.stream = static_cast<WriterStream*>(g_pluginEnvironment->getWriterStream());
    if (fields.stream == nullptr) {
        throw std::runtime_error("Writer stream is not initialized");
    }
    fields.parser = WriterInterfaceConfigFileParser::current();
    if (fields.parser == nullptr) {
        throw std::runtime_error("Output config parser is not initialized");
    }
    std::deque<std::string> request;
    const bool hasEntries = fields.parser->hasTableEntriesFor(fields.featureTag, fields.containerTag);
    if (!hasEntries) {
        logWarning(
            "WARNING: Output config table entries not present for the feature-switch-tag and "
            "metric-container-tag combo: '%s_%s'. Add table entries specific to Metric container type.\n",
            fields.featureTag.c_str(), fields.containerTag.c_str());
    } else if (!fields.parser->getTableOrderForMetric(request,
                                                      fields.featureTag + "_" + fields.containerTag)) {
        fields.parser->getTableOrderForMetric(request, "ALL_" + fields.containerTag);
    }
    std::vector<std::uint32_t> summaries = orderSummaries(fields.rules->selectors, request);
    if (hasEntries) {
        std::erase_if(summaries, [&](std::uint32_t number) {
            const char* key = fields.rules->selectors[number];
            TableInfo info;
            if (!fields.parser->getTableInfoFor(info, fields.featureTag, fields.containerTag, key)) {
                return false;
            }
            return !fields.tableInfos.insert_or_assign(key, info).first->second.isTableDisplayed();
        });
    }
    if (fields.rules->isResidency && fields.quantity != Quantity::time()) {
        throw std::runtime_error(
            "Quantity for MetricType::SampledResidency metric must be pwr::Quantity::time()");
    }
    fields.intake.setRules(fields.rules);
    fields.intake.accumulators.push_back(fields.rules->makeAccumulator(summaries, *this));
}

int Metric::setData(std::uint64_t timestamp, DataElement& element, std::uint64_t duration) {
    return m_fields->intake.take(timestamp, element, duration);
}

int Metric::finalize() {
    Fields& fields = *m_fields;
    if (fields.isFinalized) {
        return fields.finalResult;
    }
    if (fields.intake.isEmpty()) {
        logWarning("WARNING: No data was provided for metric %s\n", fields.name.c_str());
        return 1;
    }
    fields.isFinalized = true;
    fields.intake.end();
    for (const std::shared_ptr<Accumulator>& accumulator : fields.intake.accumulators) {
        if (accumulator->finalize(*this) != 0) {
            logWarning("WARNING: Metric container %s couldn't finalize an accumulator!\n",
                       fields.name.c_str());
            fields.finalResult = 1;
        }
    }
    return fields.finalResult;
}

bool Metric::isEmpty() const {
    return m_fields->intake.isEmpty();
}

int Metric::addStaticTableRowInfo(TableMessage* table) {
    if (table == nullptr) {
        logWarning("WARNING: %s: Please provide a valid table with static row information.\n",
                   m_fields->name.c_str());
        return 1;
    }
    table->setMetricContainerId(m_fields->id);
    MetricContainerInfoMessage message;
    message.setMetricFeatureTag(m_fields->featureTag);
    message.setMetricContainerId(m_fields->id);
    message.addStaticTableRowInfo(table);
    if (m_fields->stream != nullptr) {
        m_fields->stream->pushMessage(message);
    }
    return 0;
}

int Metric::addAccumulator(std::shared_ptr<Accumulator> accumulator) {
    if (accumulator == nullptr) {
        logWarning("WARNING: trying to add a NULL accumulator to Metric container %s?!\n",
                   m_fields->name.c_str());
        return 1;
    }
    if (!m_fields->intake.isEmpty()) {
        logWarning("WARNING: trying to add an accumulator to Metric container %s after setting data?!\n",
                   m_fields->name.c_str());
        return 1;
    }
    m_fields->intake.accumulators.push_back(std::move(accumulator));
    return 0;
}

int Metric::setFiniteSetValues(const std::vector<const DataDescriptor*>& descriptors) {
    Fields& fields = *m_fields;
    if (std::find(descriptors.begin(), descriptors.end(), nullptr) != descriptors.end()) {
        logWarning("WARNING: %s: Please provide a valid pointer to DataDescriptor object.\n",
                   fields.name.c_str());
        return 1;
    }
    if (fields.rules == nullptr || !fields.rules->takesFiniteSet) {
        logWarning(
            "WARNING: %s: Finite set of possible values can be provided only for MetricType::SampledValue or "
            "MetricType::TracedValueTransition metric types.\n",
            fields.name.c_str());
        return 1;
    }
    std::vector<Data> values = fields.finiteSet;
    for (const DataDescriptor* descriptor : descriptors) {
        const Data* value = descriptor->getValue();
        if (value == nullptr || (!values.empty() && values.front().getType() != value->getType())) {
            logWarning(
                "WARNING: The data type of the finite set of possible valuesdoes not match what was provided "
                "previously\n");
            return 1;
        }
        if (std::find(values.begin(), values.end(), *value) == values.end()) {
            values.push_back(*value);
        }
    }
    fields.finiteSet = std::move(values);
    return 0;
}

int Metric::setEntityDescriptorCombinations(const std::vector<EntityDescCombo>& combinations) {
    const bool isComplete = std::all_of(combinations.begin(), combinations.end(),
                                        [](const EntityDescCombo& combo) { return combo.entity != nullptr; });
    if (!isComplete) {
        logWarning("WARNING: %s: Entity is required when setting entity-descriptor combinations.\n",
                   m_fields->name.c_str());
        return 1;
    }
    m_fields->combinations = combinations;
    return 0;
}

int Metric::setTimelineTableToDisplay(TimelineTableType type) {
    if (m_fields->rules == nullptr || !m_fields->rules->isResidency) {
        logWarning("WARNING: Warning: Timeline output table selection is only valid for "
                   "MetricType::SampledResidency type metrics.\nThis request will be ignored.");
        return 0;
    }
    MetricContainerInfoMessage message;
    message.setMetricFeatureTag(m_fields->featureTag);
    message.setMetricContainerId(m_fields->id);
    message.setTimelineTableToDisplay(type);
    m_fields->stream->pushMessage(message);
    return 0;
}

} // namespace pwr
