#include "plugins/collectors/tracefs/tracefs.h"

#include <utility>

#include "common/metadata/msg_metadata.h"
#include "common/platform/system_info.h"
#include "common/plugin/logger.h"
#include "common/plugin/plugin_environment.h"
#include "common/plugin/plugin_loader.h"
#include "common/tw_clock.h"
#include "common/values/data.h"
#include "plugins/collectors/message_keys.h"

namespace tracefs {

namespace {

using pwr::MsgMetadata;
using State = MessageAvailability::State;

/// The kernel stamps with the platform's performance counter; other default clocks are compared to it once.
TraceClock liveClock() {
    const pwr::TWQPCClock stamps;
    const pwr::TWClockSource* const ticks = g_pluginEnvironment->getDefaultClock();
    if (ticks == nullptr || ticks->getUUID() == stamps.getUUID() || !(ticks->getFrequency() > 0)) {
        return {};
    }
    return {stamps.getTimestamp(), ticks->getTimestamp(),
            static_cast<double>(ticks->getFrequency()) / static_cast<double>(stamps.getFrequency())};
}

} // namespace

TracefsCollector::TracefsCollector() : CollectorPlugin("tracefs") {}

TracefsCollector::~TracefsCollector() = default;

int TracefsCollector::setOption(const std::string& key, const std::string& value) {
    if (key != "machine" || value.empty()) {
        return 1;
    }
    m_where = value;
    return 0;
}

const char* TracefsCollector::getDescription() const {
    return "Events from the tracepoints of the kernel (tracefs)";
}

std::vector<std::string> TracefsCollector::getCollectorTypes() const {
    return {COLLECTOR_TYPE};
}

int TracefsCollector::initialize() {
    std::string reason;
    m_machine = pwr::openMachine(m_where, reason);
    if (!m_machine) {
        pwr::logError("ERROR: %s\n", reason.c_str());
        return 1;
    }
    return 0;
}

MessageAvailability TracefsCollector::probe(const MsgMetadata& message) {
    if (!m_machine) {
        return {State::NOT_HERE, {}, {}};
    }
    const TracePlan plan = planTrace(*m_machine, message);
    if (!plan.error.empty()) {
        return {State::INVALID, plan.error, {}}; // wherever it is checked
    }
    if (isLive_i() && !pwr::platform::keepsCountersInFiles()) {
        return {State::NOT_HERE, {}, {}};
    }
    Refusal refusal;
    if (isLive_i() && !canTrace(refusal)) {
        return {State::ABSENT, refusal.reason, refusal.fix};
    }
    if (!isLive_i() && !m_machine->exists(std::string(TRACING_FOLDER) + "/per_cpu")) {
        return {State::ABSENT, "no trace was recorded of this machine", {}};
    }
    // A folder's files have no moments, so its collection happens now and the trace before it.
    if (!isLive_i() && m_machine->moments().empty()) {
        return {State::ABSENT, "a trace can be replayed from a bundle only", {}};
    }
    return plan.owners.empty() ? MessageAvailability{State::ABSENT, plan.reason, {}} : MessageAvailability();
}

MessageAvailability TracefsCollector::probeWrite(const MsgMetadata& message) {
    return collectors::onlyReads(message, COLLECTOR_TYPE);
}

int TracefsCollector::open(const MsgMetadata& message, MessageInstances& out) {
    out = MessageInstances();
    Refusal refusal;
    if (openMessage_i(message, out, refusal) == 0) {
        return 0;
    }
    out = MessageInstances();
    out.reason = "message " + message.getMsgName() + ": " + refusal.reason;
    out.fix = refusal.fix;
    if (m_messages.empty()) {
        m_session.reset();
    }
    return 1;
}

int TracefsCollector::openMessage_i(const MsgMetadata& message, MessageInstances& out, Refusal& refusal) {
    if (!m_machine) {
        refusal.reason = "the machine's files could not be opened";
        return 1;
    }
    TracePlan plan = planTrace(*m_machine, message);
    if (plan.owners.empty() && plan.error.empty() && isLive_i() && !canTrace(refusal)) {
        return 1;
    }
    if (plan.owners.empty()) {
        refusal.reason = !plan.error.empty()    ? plan.error
                         : !plan.reason.empty() ? plan.reason
                                                : "nothing on this machine matches";
        return 1;
    }
    if (m_names.makeInstances(plan.owners, out) != 0) {
        refusal = {out.reason, out.fix};
        return 1;
    }
    out.states = statesOf(plan);
    if (!m_session && openSession_i(refusal) != 0) {
        return 1;
    }
    auto trace = std::make_unique<MessageTrace>(std::move(plan), *m_machine, message.getCapName());
    if (m_session->add(*trace, refusal) != 0) {
        return 1;
    }
    m_messages[message.getMsgID()] = std::move(trace);
    return 0;
}

int TracefsCollector::openSession_i(Refusal& refusal) {
    std::string text;
    PageLayout layout;
    m_machine->read(std::string(TRACING_FOLDER) + "/events/header_page", text);
    if (layout.parse(text, refusal.reason) != 0) {
        return 1;
    }
    std::unique_ptr<TraceSource> source = isLive_i()
                                              ? openLiveTrace(layout.pageSize, refusal)
                                              : openRecordedTrace(*m_machine, layout.pageSize, refusal);
    if (!source) {
        return 1;
    }
    m_session =
        std::make_unique<TraceSession>(std::move(source), layout, isLive_i() ? liveClock() : TraceClock());
    m_drainedUntil = 0;
    return 0;
}

int TracefsCollector::read(const MsgMetadata& /*message*/, CollectionData& /*out*/) {
    return 1;
}

int TracefsCollector::drain(const MsgMetadata& message, std::uint64_t untilTick,
                            std::vector<CollectionData>& out) {
    const auto trace = m_messages.find(message.getMsgID());
    if (trace == m_messages.end()) {
        return 1;
    }
    // The messages share one trace, and are asked one after the other for the same time.
    if (untilTick > m_drainedUntil) {
        m_session->advance(untilTick);
        m_drainedUntil = untilTick;
    }
    trace->second->moveTo(out);
    return 0;
}

void TracefsCollector::close(const MsgMetadata& message) {
    const auto trace = m_messages.find(message.getMsgID());
    if (trace == m_messages.end()) {
        return;
    }
    m_session->remove(*trace->second);
    for (std::string& note : trace->second->notes(*m_machine)) {
        m_notes.push_back(std::move(note));
    }
    m_messages.erase(trace);
    if (m_messages.empty()) {
        for (std::string& note : m_session->notes()) {
            m_notes.push_back(std::move(note));
        }
        m_session.reset();
    }
}

std::vector<std::string> TracefsCollector::takeNotes() {
    return std::exchange(m_notes, {});
}

} // namespace tracefs

KRCOMMON_PLUGIN("tracefs", KR_PLUGIN_COLLECTOR, tracefs::TracefsCollector);
