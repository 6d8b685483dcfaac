#pragma once

#include <cstdint>
#include <deque>
#include <vector>

#include "common/metrics/data_element.h"
#include "common/metrics/metric_declaration.h"
#include "common/plugin/collection_data.h"
#include "plugins/metrics/counter_difference.h"
#include "plugins/metrics/metric_containers.h"
#include "plugins/metrics/residency_carry/carry.h"
#include "plugins/metrics/ticks_of_counter.h"

namespace pwr {

/// The states of one entity: follows their counters, carries late bookings back, and hands finished
/// intervals to a container. A state whose counter is missing, reset or behind a gap ends the line of
/// readings: no time is counted across it, for none of the states.
class EntityResidency {
public:
    /// One state, and where its counter stands in the message's readings.
    struct State {
        std::size_t instance;
        const DataDescriptor* descriptor;
    };

    /// `rest` is null where the states cover all time: what none of them got is then not booked.
    EntityResidency(const EntityHandle* entity, const std::vector<State>& states,
                    const MetricDeclaration& metric, float clockMHz, const DataDescriptor* rest,
                    const DataDescriptor* notBooked);

    /// Takes the entity's counters out of a reading.
    void process(const CollectionData& reading, MetricContainer& container);
    /// Ends the line of readings, at a gap or at the end of the collection.
    void interrupt();

    /// Whether the interval that ends at a tick may be handed on; also when there is none.
    bool isFinalAt(std::uint64_t tick) const;
    /// That interval cannot be held any longer: joins it to the next one, unless a step came after it.
    void postpone(std::uint64_t tick);
    /// Hands the interval that ends at a tick to the container, when there is one.
    void handOn(std::uint64_t tick, MetricContainer& container);

    const EntityHandle* entity() const { return m_entity; }
    std::uint64_t gaps() const { return m_gaps; }
    /// Ticks of all intervals handed on, and booked ones that found no place in any.
    std::uint64_t covered() const { return m_covered; }
    std::uint64_t lost() const { return m_carry.lost(); }

private:
    struct Counter {
        DataElement element;
        std::size_t instance;
        CounterDifference difference;
        TicksOfCounter ticks;
        std::uint64_t first = 0; // of this line of readings
    };
    /// An interval of a line of readings that ended while other entities still hold theirs.
    struct Finished {
        std::uint64_t end;
        std::uint64_t length;
        std::uint64_t rest;
        std::uint64_t notBooked;
        std::vector<std::uint64_t> states;
    };

    bool isComplete_i(const CollectionData& reading) const;
    bool isInRecord_i(const CollectionData& reading, std::size_t instance) const;
    void start_i(const CollectionData& reading);
    bool readDifferences_i(const CollectionData& reading, MetricContainer& container);
    void handOn_i(const ResidencyCarry::Interval& interval, MetricContainer& container);
    static void setData_i(DataElement& element, std::uint64_t ticks, const ResidencyCarry::Interval& interval,
                          MetricContainer& container);

    DataElement m_rest;
    DataElement m_notBooked;
    const EntityHandle* m_entity;
    std::vector<Counter> m_counters;
    std::vector<std::uint64_t> m_booked; // ticks per state in the reading at hand
    ResidencyCarry m_carry;
    std::deque<Finished> m_finished;
    bool m_hasRest;
    std::uint64_t m_second; // ticks
    std::uint64_t m_gaps = 0;
    std::uint64_t m_covered = 0;
};

} // namespace pwr
