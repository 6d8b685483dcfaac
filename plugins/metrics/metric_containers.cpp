#include "plugins/metrics/metric_containers.h"

#include <array>
#include <charconv>
#include <stdexcept>

#include "common/model/data_descriptor.h"
#include "common/model/field.h"
#include "common/plugin/logger.h"
#include "common/values/quantity.h"

namespace pwr {

namespace {

void setTitles(const MetricDeclaration& declaration, Metric& metric) {
    if (!declaration.entityTitle.empty()) {
        metric.setEntityGroupInfo(FieldDescription(declaration.entityTitle));
    }
    if (!declaration.descriptorTitle.empty()) {
        metric.setDescriptorGroupInfo(FieldDescription(declaration.descriptorTitle));
    }
}

template <class Number> Data numberOf(const std::string& text) {
    Number number{};
    std::from_chars(text.data(), text.data() + text.size(), number);
    return Data(number);
}

Data stateValue(const std::string& text, DataType type) {
    switch (type) {
    case DataType::INT: return numberOf<std::int64_t>(text);
    case DataType::UINT: return numberOf<std::uint64_t>(text);
    case DataType::REAL: return numberOf<double>(text);
    default: return Data(text);
    }
}

void setStates(const MetricDeclaration& declaration, Metric& metric) {
    const bool isNamed = !stateNames(declaration).empty();
    std::vector<const DataDescriptor*> states;
    for (const auto& [value, name] : declaration.states) {
        const Data shown = isNamed ? Data(name) : stateValue(value, declaration.valueType);
        states.push_back(DataDescriptorBuilder(name).setValue(shown).build());
    }
    if (!states.empty()) {
        metric.setFiniteSetValues(states);
    }
}

struct NoteRow {
    std::uint64_t MetricContainer::*count;
    const char* what;
    const char* result;
};

constexpr std::array NOTES{
    NoteRow{&MetricContainer::missing, "Values that could not be read", "their time is left out"},
    NoteRow{&MetricContainer::gaps, "Readings after a gap", "the time before them is left out"},
    NoteRow{&MetricContainer::lossy, "Times that events were lost", "they are missing here"},
    NoteRow{&MetricContainer::reset, "Counters that fell back", "what they counted meanwhile is left out"},
    NoteRow{&MetricContainer::cut, "States that held more time than had passed", "the excess is left out"},
    NoteRow{&MetricContainer::back, "Counters that went back a little", "they count on from where they were"},
    NoteRow{&MetricContainer::wrapped, "Counters that ran through their end", "they are counted on"},
};

void addNotes(MetricContainer& container) {
    for (const NoteRow& row : NOTES) {
        if (container.*row.count > 0) {
            container.metric->setPostMetricTextInfo(std::string(row.what) + ": " +
                                                    std::to_string(container.*row.count) + " (" + row.result +
                                                    ")");
        }
    }
    for (const std::string& note : container.notes) {
        container.metric->setPostMetricTextInfo(note);
    }
}

} // namespace

StateNames stateNames(const MetricDeclaration& declaration) {
    StateNames names;
    if (declaration.type == Metric::MetricType::TracedValueTransition && declaration.isRaw) {
        for (const auto& [value, name] : declaration.states) {
            std::uint64_t number = 0;
            std::from_chars(value.data(), value.data() + value.size(), number);
            names.emplace(number, Data(name));
        }
    }
    return names;
}

MetricContainer* MetricContainers::containerOf(const DeclaredMessage& message, const SystemMetadata& system) {
    const MetricDeclaration& declaration = *message.metric;
    const auto known = m_byTag.find({message.feature, declaration.containerTag});
    if (known != m_byTag.end()) {
        return known->second;
    }
    std::string error;
    const Quantity* quantity = quantityOf(declaration.quantity, error);
    if (!error.empty()) {
        logWarning("WARNING: %s: QUANTITY: %s\n", declaration.name.c_str(), error.c_str());
        return nullptr;
    }
    auto container = std::make_unique<MetricContainer>();
    try {
        container->metric = std::make_unique<Metric>(
            declaration.name, declaration.type, declaration.containerTag, message.feature, system, quantity);
    } catch (const std::runtime_error& reason) {
        logWarning("WARNING: %s: %s\n", declaration.name.c_str(), reason.what());
        return nullptr;
    }
    setTitles(declaration, *container->metric);
    setStates(declaration, *container->metric);
    m_byTag.emplace(std::pair(message.feature, declaration.containerTag), container.get());
    m_containers.push_back(std::move(container));
    return m_containers.back().get();
}

int MetricContainers::finalize() {
    int result = 0;
    for (const std::unique_ptr<MetricContainer>& container : m_containers) {
        addNotes(*container);
        result |= container->metric->finalize();
    }
    return result;
}

} // namespace pwr
