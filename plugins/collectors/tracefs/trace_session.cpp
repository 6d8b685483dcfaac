#include "plugins/collectors/tracefs/trace_session.h"

#include <algorithm>
#include <utility>

namespace tracefs {

TraceSession::TraceSession(std::unique_ptr<TraceSource> source, const PageLayout& layout,
                           const TraceClock& clock)
    : m_layout(layout), m_reader(std::move(source), m_layout), m_clock(clock) {}

int TraceSession::add(MessageTrace& message, Refusal& refusal) {
    const std::vector<Tracepoint>& points = message.plan().tracepoints;
    m_messages.push_back(&message);
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (m_users[points[i].name]++ == 0 && m_reader.source().enable(points[i].name, refusal) != 0) {
            remove(message);
            return 1;
        }
        m_routes.resize(std::max<std::size_t>(m_routes.size(), points[i].id + std::size_t{1}));
        m_routes[points[i].id].push_back({&message, i});
    }
    return 0;
}

void TraceSession::remove(MessageTrace& message) {
    for (const Tracepoint& point : message.plan().tracepoints) {
        const auto users = m_users.find(point.name);
        if (users != m_users.end() && --users->second == 0) {
            m_reader.source().disable(point.name);
            m_users.erase(users);
        }
    }
    advance(UINT64_MAX);
    for (std::vector<Route>& routes : m_routes) {
        std::erase_if(routes, [&](const Route& route) { return route.message == &message; });
    }
    std::erase(m_messages, &message);
}

void TraceSession::advance(std::uint64_t untilTick) {
    m_reader.advance(m_clock.stampOf(untilTick), *this);
}

void TraceSession::take(const TraceEvent& event, std::size_t processor) {
    std::uint16_t id = 0;
    if (!EventFormat::idOf(event, id) || id >= m_routes.size()) {
        return;
    }
    m_events += m_routes[id].empty() ? 0 : 1;
    for (const Route& route : m_routes[id]) {
        route.message->take(event, route.tracepoint, m_clock.tickOf(event.timestamp),
                            m_reader.source().processors()[processor]);
    }
}

/// What was lost may have been anybody's.
void TraceSession::miss(std::size_t processor) {
    for (MessageTrace* message : m_messages) {
        message->miss(m_reader.source().processors()[processor]);
    }
}

std::vector<std::string> TraceSession::notes() {
    std::uint64_t lost = 0;
    std::string where;
    for (std::size_t i = 0; i < m_reader.source().processors().size(); ++i) {
        const std::uint64_t ofThis = std::max(m_reader.source().lost(i), m_reader.lost(i));
        lost += ofThis;
        if (ofThis > 0) {
            where += (where.empty() ? "processor " : ", processor ") +
                     std::to_string(m_reader.source().processors()[i]) + ": " + std::to_string(ofThis);
        }
    }
    std::vector<std::string> notes;
    notes.push_back("Traced events: " + std::to_string(m_events) +
                    (lost == 0 ? ", none lost" : "; lost: " + std::to_string(lost) + " (" + where + ")"));
    if (m_reader.damagedPages() > 0) {
        notes.push_back("Damaged pages of the trace: " + std::to_string(m_reader.damagedPages()) +
                        " (what stood behind the damage is left out)");
    }
    return notes;
}

} // namespace tracefs
