#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "plugins/collectors/tracefs/event_format.h"

namespace tracefs {

/// How the pages of a kernel's trace are laid out, from the file "events/header_page".
struct PageLayout {
    EventField timestamp, commit;
    std::size_t dataOffset = 0;
    std::size_t pageSize = 0;

    /// 1 with what is wrong in `error`: it is as strange as a page of more than a megabyte.
    int parse(std::string_view text, std::string& error);
};

/// Walks through the events of one page of a trace: the page's time, then events with the time since the one before.
/// Pages may come from recorded machines, so nothing in them is believed: a page that is wrong ends where the first
/// fault is.
class PageDecoder {
public:
    explicit PageDecoder(const PageLayout& layout) : m_layout(&layout) {}

    /// Begins with a page, which must stay where it is. 1 when it is too short to be one.
    int load(std::span<const char> page);
    /// The next event; false behind the last.
    bool next(TraceEvent& event);
    /// Forgets the page.
    void clear() { *this = PageDecoder(*m_layout); }

    /// Events that were lost before this page, as far as it tells: at least 1 when any were.
    std::uint64_t lost() const { return m_lost; }
    /// Whether the page ended at a fault.
    bool isDamaged() const { return m_isDamaged; }

private:
    bool step_i(TraceEvent& event, bool& isEvent);
    bool fail_i() {
        m_isDamaged = true;
        m_rest = {};
        return false;
    }

    const PageLayout* m_layout;
    std::span<const char> m_rest;
    std::uint64_t m_time = 0;
    std::uint64_t m_lost = 0;
    bool m_isDamaged = false;
};

} // namespace tracefs
