#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "plugins/collectors/tracefs/message_trace.h"
#include "plugins/collectors/tracefs/page_decoder.h"
#include "plugins/collectors/tracefs/trace_clock.h"
#include "plugins/collectors/tracefs/trace_reader.h"

namespace tracefs {

/// One trace that all messages share: who wants which events.
class TraceSession {
public:
    TraceSession(std::unique_ptr<TraceSource> source, const PageLayout& layout, const TraceClock& clock);
    TraceSession(const TraceSession&) = delete;
    TraceSession& operator=(const TraceSession&) = delete;
    ~TraceSession() = default;

    /// Records the message's tracepoints from now on. 1 with the reason when the kernel refuses.
    int add(MessageTrace& message, Refusal& refusal);
    /// Ends it: what was recorded so far is still handed on.
    void remove(MessageTrace& message);

    /// Hands on all events before a tick of the default clock.
    void advance(std::uint64_t untilTick);

    /// What the user should know of the trace as a whole.
    std::vector<std::string> notes();

    // For the reader.
    void take(const TraceEvent& event, std::size_t processor);
    void miss(std::size_t processor);

private:
    struct Route {
        MessageTrace* message;
        std::size_t tracepoint; // its place in the message's plan
    };

    PageLayout m_layout;
    TraceReader m_reader;
    TraceClock m_clock;
    std::vector<std::vector<Route>> m_routes; // by the event's number
    std::vector<MessageTrace*> m_messages;
    std::map<std::string, unsigned> m_users; // of each tracepoint
    std::uint64_t m_events = 0;
};

} // namespace tracefs
