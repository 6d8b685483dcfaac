#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "common/metrics/data_element.h"
#include "common/plugin/collection_data.h"
#include "plugins/metrics/counter_difference.h"
#include "plugins/metrics/declared_messages.h"
#include "plugins/metrics/generic/known_time.h"
#include "plugins/metrics/metric_containers.h"
#include "plugins/metrics/ticks_of_counter.h"

namespace pwr {

/// Turns the readings of one message into samples of its container.
///   - A counter gives the difference to the reading before, over the time between the two; its first
///     reading, and the first after a gap, a reset or a missing value, gives nothing.
///   - A level stands for the time since the reading before. The first one after a gap stands for as long
///     as the last one did, since nothing is known of the gap itself. A level that is read at the very
///     begin stands for no time yet and is left out.
///   - A transition is a level that is told when it changes. What lies in a gap belongs to no state.
///   - A residency hands on all states of an entity or none: one missing state leaves the entity out.
class MessageComputer {
public:
    static constexpr const char* PLUGIN = "generic";
    static constexpr const char* DESCRIPTION = "Metrics described by data: counters, levels, residencies";
    static constexpr bool TAKES_UNNAMED = true;
    static const char* unfit(const MetricDeclaration&) { return nullptr; }

    /// Keeps references to the message and the container.
    MessageComputer(const DeclaredMessage& message, MetricContainer& container, const SystemMetadata& system);

    /// Rows for instances that were appended since.
    void update();
    void process(const CollectionData& reading);
    void finish(std::uint64_t stopTick);

private:
    /// What every reading touches stands together: rows are more than the caches near the processor hold.
    struct Row {
        DataElement element;
        std::uint64_t lastTick = 0;
        std::uint64_t lastInterval = 0;
        std::size_t entity = 0; // which of the message's entities
        bool hasLast = false;   // and nothing is missing since
        bool wasRead = false;
        CounterDifference counter;
        TicksOfCounter ticks;
        std::uint64_t lastBits = 0;
        std::string lastText{};
    };
    struct Pending {
        std::size_t row;
        std::uint64_t value;
        std::uint64_t duration;
    };

    void processRow_i(std::size_t index, const CollectionData& reading, std::size_t at);
    void processCounter_i(std::size_t index, std::uint64_t bits, std::uint64_t tick);
    void processLevel_i(Row& row, const CollectionData& reading, std::size_t at, std::uint64_t tick);
    void beginAnew_i(const tw_driver_msg& header);
    void processTransition_i(std::size_t index, const CollectionData& reading, std::size_t at);
    void setValue_i(Row& row, const CollectionData& reading, std::size_t at) const;
    void addDifference_i(std::size_t index, std::uint64_t difference, std::uint64_t tick,
                         std::uint64_t duration);
    std::uint64_t firstDuration_i(Row& row, std::uint64_t tick) const;
    void flushResidency_i(std::uint64_t tick);
    void forget_i(Row& row);
    static bool isChange_i(Row& row, const CollectionData& reading, std::size_t at);

    const DeclaredMessage& m_message;
    const MetricDeclaration& m_metric;
    MetricContainer& m_container;
    const SystemMetadata& m_system;
    std::vector<Row> m_rows;
    std::vector<const EntityHandle*> m_entities;
    std::vector<bool> m_isLeftOut;  // per entity, in the reading at hand
    std::vector<Pending> m_pending; // residencies of the reading at hand
    KnownTime m_known;              // of transitions
    StateNames m_states;            // of transitions whose states have names
};

} // namespace pwr
