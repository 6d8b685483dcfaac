#include "common/metrics/thermal_sample_handler.h"

#include "common/metadata/system_metadata.h"
#include "common/model/entity_handle.h"
#include "common/plugin/logger.h"
#include "common/values/quantity.h"

namespace pwr {

std::unique_ptr<ThermalSampleHandler> ThermalSampleHandler::s_instance;

ThermalSampleHandler::ThermalSampleHandler(const SystemMetadata& metadata)
    : m_isImmediate(metadata.immediateMode),
      m_metric("Temperature Metrics", Metric::MetricType::SampledValue, "ALL-THERMAL-DATA", "temp", metadata,
               Quantity::temperature()) {}

ThermalSampleHandler::~ThermalSampleHandler() = default;

ThermalSampleHandler* ThermalSampleHandler::getInstance(const SystemMetadata& metadata,
                                                        const MetricPlugin* plugin) {
    if (s_instance == nullptr) {
        s_instance.reset(new ThermalSampleHandler(metadata)); // its constructor is nobody else's
    }
    s_instance->m_plugins.insert(plugin);
    return s_instance.get();
}

int ThermalSampleHandler::release(const MetricPlugin* plugin) {
    if (s_instance == nullptr) {
        logWarning("WARNING: Attempt to unregister a plugin from a non-existant ThermalSampleHandler\n");
        return 1;
    }
    return s_instance->unregister_i(plugin);
}

void ThermalSampleHandler::freeInstance() {
    s_instance.reset();
}

int ThermalSampleHandler::unregister_i(const MetricPlugin* plugin) {
    if (m_plugins.erase(plugin) == 0) {
        logWarning(
            "WARNING: ThermalSampleHandler: Attempt to unregister a plugin that has not been registered "
            "or it may have already been unregistered.\n");
        return 1;
    }
    return m_plugins.empty() && !m_metric.isEmpty() ? m_metric.finalize() : 0;
}

int ThermalSampleHandler::addEntity(const EntityHandle* entity) {
    if (entity == nullptr) {
        logWarning("WARNING: ThermalSampleHandler: please provide a valid entity.\n");
        return 1;
    }
    if (!m_sources.try_emplace(entity->getId(), Source{DataElement(entity, nullptr)}).second) {
        logWarning("WARNING: ThermalSampleHandler: Entity %s already added\n", entity->getName().c_str());
        return 1;
    }
    return 0;
}

ThermalSampleHandler::Source* ThermalSampleHandler::find_i(const EntityHandle* entity) {
    if (entity == nullptr) {
        logWarning(
            "WARNING: ThermalSampleHandler: Please provide a valid entity when setting temperature.\n");
        return nullptr;
    }
    const auto known = m_sources.find(entity->getId());
    if (known == m_sources.end()) {
        logWarning("WARNING: ThermalSampleHandler: cannot set temperature for an entity that has not been "
                   "added yet.\n");
        return nullptr;
    }
    return &known->second;
}

int ThermalSampleHandler::setTemperature(const EntityHandle* entity, std::uint64_t timestamp,
                                         std::uint16_t temperature, bool noDuration) {
    Source* const source = find_i(entity);
    if (source == nullptr) {
        return 1;
    }
    source->element.setValue(Data(std::uint64_t{temperature}));
    const std::uint64_t moment = m_isImmediate ? timestamp : enterRound_i(*source, timestamp, true);
    return m_metric.setData(moment, source->element, noDuration ? Metric::NO_DURATION : 0);
}

int ThermalSampleHandler::skipTemperature(const EntityHandle* entity, std::uint64_t timestamp) {
    Source* const source = find_i(entity);
    if (source == nullptr) {
        return 1;
    }
    if (!m_isImmediate) {
        enterRound_i(*source, timestamp, false);
    }
    return 0;
}

/// Gives the source its place in the round, or the first one in a new round, and returns the round's timestamp.
std::uint64_t ThermalSampleHandler::enterRound_i(Source& source, std::uint64_t timestamp, bool isReading) {
    const bool isNew = m_round.count == 0 || source.round == m_round.number;
    if (isNew) {
        if (m_round.count % m_sources.size() != 0) {
            logWarning("WARNING: Temperature values were not set for all the entities at %llu.\n",
                       static_cast<unsigned long long>(m_round.timestamp));
            m_round.count = 0;
        }
        ++m_round.number;
        m_round.hasReading = false;
    }
    if (isNew || (isReading && !m_round.hasReading)) {
        m_round.timestamp = timestamp;
    }
    m_round.hasReading = m_round.hasReading || isReading;
    source.round = m_round.number;
    ++m_round.count;
    return m_round.timestamp;
}

int ThermalSampleHandler::resetTemperatures(const std::vector<const EntityHandle*>& entities,
                                            std::uint64_t timestamp, std::uint16_t temperature) {
    for (const EntityHandle* entity : entities) {
        Source* const source = find_i(entity);
        if (source == nullptr) {
            return 1;
        }
        source->element.setValue(Data(std::uint64_t{temperature}));
        if (m_metric.setData(timestamp, source->element, Metric::NO_DURATION) != 0) {
            return 1;
        }
    }
    return 0;
}

} // namespace pwr
