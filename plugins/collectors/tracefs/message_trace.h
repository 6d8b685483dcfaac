#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "common/plugin/collection_data.h"
#include "plugins/collectors/tracefs/event_format.h"
#include "plugins/collectors/tracefs/trace_plan.h"
#include "plugins/collectors/tracefs/witness.h"

namespace tracefs {

/// One message that is being traced: turns its events into records of one value each, and keeps them until somebody
/// asks for them.
class MessageTrace {
public:
    /// The owners are those of the plan that became instances, in their order.
    MessageTrace(TracePlan plan, const pwr::MachineFiles& machine, std::string name);

    const TracePlan& plan() const { return m_plan; }
    Witness& witness() { return m_witness; }

    /// Notes an event of a tracepoint (its place in the plan) that happened on a processor. The tick is the event's
    /// time in the default clock's ticks.
    void take(const TraceEvent& event, std::size_t tracepoint, std::uint64_t tick, unsigned processor);
    /// Events were lost on a processor. They may have told of any processor, unless all so far told of their own.
    void miss(unsigned processor);

    /// Appends all that were noted since.
    void moveTo(std::vector<CollectionData>& out);

    /// What the user should know of the events.
    std::vector<std::string> notes(const pwr::MachineFiles& machine) const;

private:
    int instanceOf_i(std::uint64_t processor) const;
    void addText_i(const TraceEvent& event, const Tracepoint& point, CollectionData& record);

    TracePlan m_plan;
    std::string m_name;
    std::vector<int> m_instances; // by the processor's number; -1: not in the topology
    Witness m_witness;
    std::vector<CollectionData> m_records;
    std::string m_text; // kept for its room
    std::uint64_t m_lastTick = 0;
    std::uint64_t m_nobodys = 0; // events of processors that are not in the topology
    std::uint64_t m_nameless = 0;
    std::vector<bool> m_isBehindLoss; // by instance
    bool m_isToldByOthers = false;    // an event of a processor happened on another one
};

} // namespace tracefs
