#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <vector>

#include "common/metadata/system_metadata.h"
#include "plugins/metrics/declared_messages.h"
#include "plugins/metrics/metric_containers.h"
#include "plugins/metrics/residency_carry/entity_residency.h"

namespace pwr {

/// One message whose values are time counters of the states of entities. Its readings are handed to the
/// container in order of time, each when every entity is done with it, at the latest after MAX_HELD
/// further ones; entities that are not done then have their interval in a later one.
class CarriedMessage {
public:
    static constexpr const char* PLUGIN = "residency_carry";
    static constexpr const char* DESCRIPTION = "Residencies whose time is booked late and in steps";
    static constexpr bool TAKES_UNNAMED = false;
    static const char* unfit(const MetricDeclaration& metric) {
        const bool isFit = metric.type == Metric::MetricType::SampledResidency &&
                           metric.source == MetricDeclaration::Source::COUNTER;
        return isFit ? nullptr : "residency_carry computes SampledResidency from a COUNTER only";
    }

    /// Keeps references to all of them.
    CarriedMessage(const DeclaredMessage& message, MetricContainer& container, const SystemMetadata& system);

    /// Takes in entities that were appended since; known ones keep their states.
    void update();
    void process(const CollectionData& reading);
    /// Hands on what is held, and notes what the tables do not show.
    void finish(std::uint64_t stopTick);

private:
    void release_i();
    void addNotes_i(const EntityResidency& entity, std::uint64_t gaps, std::uint64_t stopTick);

    const DeclaredMessage& m_message;
    MetricContainer& m_container;
    const SystemMetadata& m_system;
    const DataDescriptor* m_rest;
    const DataDescriptor* m_notBooked;
    std::vector<std::unique_ptr<EntityResidency>> m_entities;
    std::size_t m_known = 0; // so many instances belong to an entity already
    std::deque<std::uint64_t> m_points;
    std::uint64_t m_last = 0;
};

} // namespace pwr
