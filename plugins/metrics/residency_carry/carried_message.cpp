#include "plugins/metrics/residency_carry/carried_message.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "common/model/data_descriptor.h"
#include "common/model/data_handle_provider.h"
#include "common/model/entity_handle.h"

namespace pwr {

namespace {

constexpr const char* DEFAULT_NOT_BOOKED = "Not booked";
constexpr double TICKS_PER_MHZ_MILLISECOND = 1000.0;
constexpr std::uint64_t NOTED_SHARE = 100; // one in so many

const DataDescriptor* descriptorOf(const std::string& name) {
    const DataDescriptor* known = DataHandleProvider::findDescriptor(name);
    return known != nullptr ? known : DataDescriptorBuilder(name).build();
}

std::string milliseconds(std::uint64_t ticks, float clockMHz) {
    return std::to_string(std::llround(static_cast<double>(ticks) /
                                       (static_cast<double>(clockMHz) * TICKS_PER_MHZ_MILLISECOND)));
}

} // namespace

CarriedMessage::CarriedMessage(const DeclaredMessage& message, MetricContainer& container,
                               const SystemMetadata& system)
    : m_message(message), m_container(container), m_system(system),
      m_rest(message.metric->rest.empty() ? nullptr : descriptorOf(message.metric->rest)),
      m_notBooked(
          descriptorOf(message.metric->notBooked.empty() ? DEFAULT_NOT_BOOKED : message.metric->notBooked)) {
    update();
}

void CarriedMessage::update() {
    std::vector<std::pair<const EntityHandle*, std::vector<EntityResidency::State>>> added;
    for (; m_known < m_message.instances.size(); ++m_known) {
        const auto& [entity, descriptor] = m_message.instances[m_known];
        auto place = std::find_if(added.begin(), added.end(),
                                  [e = entity](const auto& pair) { return pair.first == e; });
        if (place == added.end()) {
            place = added.insert(added.end(), {entity, {}});
        }
        place->second.push_back({m_known, descriptor});
    }
    for (const auto& [entity, states] : added) {
        m_entities.push_back(std::make_unique<EntityResidency>(entity, states, *m_message.metric,
                                                               m_system.twaClockFreq, m_rest, m_notBooked));
    }
}

void CarriedMessage::process(const CollectionData& reading) {
    const tw_driver_msg& header = reading.header();
    if (header.timestamp <= m_last) {
        return; // no time has passed
    }
    m_last = header.timestamp;
    if ((header.flags & (tw_driver_msg_flag::RESET | tw_driver_msg_flag::GAP)) != 0) {
        ++m_container.gaps;
        for (const auto& entity : m_entities) {
            entity->interrupt();
        }
    }
    for (const auto& entity : m_entities) {
        entity->process(reading, m_container);
    }
    m_points.push_back(header.timestamp);
    release_i();
}

void CarriedMessage::release_i() {
    while (!m_points.empty()) {
        const std::uint64_t tick = m_points.front();
        const bool isFinal = std::all_of(m_entities.begin(), m_entities.end(),
                                         [tick](const auto& entity) { return entity->isFinalAt(tick); });
        if (!isFinal && m_points.size() <= ResidencyCarry::MAX_HELD) {
            return;
        }
        for (const auto& entity : m_entities) {
            entity->postpone(tick);
            entity->handOn(tick, m_container);
        }
        m_points.pop_front();
    }
}

void CarriedMessage::finish(std::uint64_t stopTick) {
    std::vector<std::uint64_t> gaps;
    for (const auto& entity : m_entities) {
        gaps.push_back(entity->gaps());
        entity->interrupt();
    }
    release_i();
    for (std::size_t i = 0; i < m_entities.size(); ++i) {
        addNotes_i(*m_entities[i], gaps[i], stopTick);
    }
}

void CarriedMessage::addNotes_i(const EntityResidency& entity, std::uint64_t gaps, std::uint64_t stopTick) {
    const std::string name = entity.entity()->getQualifiedName();
    const float clock = m_system.twaClockFreq;
    if (gaps > 0) {
        const std::uint64_t all = stopTick > m_system.startTSC ? stopTick - m_system.startTSC : 0;
        m_container.notes.push_back(name + ": covers " + milliseconds(entity.covered(), clock) + " of " +
                                    milliseconds(all, clock) + " ms; gaps: " + std::to_string(gaps));
    }
    // A timer tick more than the time that passed is how counters of ticks count.
    if (entity.lost() > entity.covered() / NOTED_SHARE) {
        m_container.notes.push_back(name + ": " + milliseconds(entity.lost(), clock) +
                                    " ms were booked beyond the time that passed and are left out");
    }
}

} // namespace pwr
