#include "plugins/collectors/tracefs/message_trace.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace tracefs {

MessageTrace::MessageTrace(TracePlan plan, const pwr::MachineFiles& machine, std::string name)
    : m_plan(std::move(plan)), m_name(std::move(name)), m_witness(machine, m_plan.witness) {
    m_isBehindLoss.resize(m_plan.owners.size());
    for (std::size_t i = 0; i < m_plan.owners.size(); ++i) {
        const int processor = m_plan.owners[i].processor;
        if (processor >= 0) {
            const auto place = static_cast<std::size_t>(processor);
            m_instances.resize(std::max(m_instances.size(), place + 1), -1);
            m_instances[place] = static_cast<int>(i);
        }
    }
}

/// -1 for a processor that is nobody's.
int MessageTrace::instanceOf_i(std::uint64_t processor) const {
    if (m_plan.owners.front().processor < 0) {
        return 0;
    }
    return processor < m_instances.size() ? m_instances[static_cast<std::size_t>(processor)] : -1;
}

void MessageTrace::miss(unsigned processor) {
    const int instance = instanceOf_i(processor);
    if (m_isToldByOthers) {
        m_isBehindLoss.assign(m_isBehindLoss.size(), true);
    } else if (instance >= 0) {
        m_isBehindLoss[static_cast<std::size_t>(instance)] = true;
    }
}

void MessageTrace::take(const TraceEvent& event, std::size_t tracepoint, std::uint64_t tick,
                        unsigned processor) {
    const Tracepoint& point = m_plan.tracepoints[tracepoint];
    std::uint64_t owner = processor;
    std::uint64_t value = 0;
    if ((point.processor && !point.processor->number(event, owner)) ||
        (!m_plan.isText && !point.value->number(event, value))) {
        return; // shorter than its format
    }
    const int instance = instanceOf_i(owner);
    if (instance < 0) {
        ++m_nobodys;
        return;
    }
    if (!m_plan.isText && value != m_plan.leaving) {
        m_witness.count(static_cast<unsigned>(owner));
    }
    m_nameless += !m_plan.states.empty() && !m_plan.states.contains(value) ? 1 : 0;
    m_isToldByOthers = m_isToldByOthers || owner != processor;
    // Two events of one moment are two events all the same, and metrics take one for each moment.
    m_lastTick = std::max(tick, m_lastTick + 1);
    CollectionData& record = m_records.emplace_back();
    record.header().timestamp = m_lastTick;
    record.header().first_instance = static_cast<pw_u16_t>(instance);
    const auto place = static_cast<std::size_t>(instance);
    record.header().flags = m_isBehindLoss[place] ? tw_driver_msg_flag::GAP : 0;
    m_isBehindLoss[place] = false;
    if (m_plan.isText) {
        addText_i(event, point, record);
    } else {
        record.add(value);
    }
}

/// "softirq_entry TIMER": the event's name, and what it tells.
void MessageTrace::addText_i(const TraceEvent& event, const Tracepoint& point, CollectionData& record) {
    record.header().flags |= tw_driver_msg_flag::TEXT;
    std::uint64_t number = 0;
    std::string_view told;
    if (!point.value) {
        record.addText(point.event);
        return;
    }
    m_text.assign(point.event).append(1, ' ');
    if (point.value->number(event, number)) {
        const auto name = m_plan.names.find(number);
        m_text.append(name == m_plan.names.end() ? std::to_string(number) : name->second);
    } else if (point.value->text(event, told)) {
        m_text.append(told);
    }
    record.addText(m_text);
}

void MessageTrace::moveTo(std::vector<CollectionData>& out) {
    std::move(m_records.begin(), m_records.end(), std::back_inserter(out));
    m_records.clear();
}

std::vector<std::string> MessageTrace::notes(const pwr::MachineFiles& machine) const {
    std::vector<std::string> notes = m_witness.disagreements(machine, m_name);
    if (m_lastTick == 0 && m_nobodys == 0) {
        notes.push_back(m_name + ": nothing happened at its tracepoints");
    }
    if (m_nobodys > 0) {
        notes.push_back(m_name + ": " + std::to_string(m_nobodys) +
                        " events of processors that were offline when the collection began are left out");
    }
    if (m_nameless > 0) {
        notes.push_back(m_name + ": " + std::to_string(m_nameless) +
                        " events tell states that the kernel has no names for; tables leave them out");
    }
    return notes;
}

} // namespace tracefs
