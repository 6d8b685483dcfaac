#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tracefs {

/// One recorded event: when, and the bytes that its format describes. The bytes are those of the page that it came
/// from and live as long.
struct TraceEvent {
    std::uint64_t timestamp = 0;
    const char* data = nullptr;
    std::size_t size = 0;
};

/// Where a field of an event stands. What an event is too short for is not there; nothing is read beyond its end.
struct EventField {
    /// RELATIVE and DYNAMIC: the place of a text is told by 32 bits, offset in the low half and length in the high one,
    /// counted from the event's begin or from behind those bits.
    enum class Kind : std::uint8_t { NUMBER, TEXT, DYNAMIC, RELATIVE };

    std::string name;
    Kind kind = Kind::NUMBER;
    bool isSigned = false;
    std::uint32_t offset = 0;
    std::uint32_t size = 0;

    /// Of a NUMBER, with its sign spread over 64 bits; false when the event does not have it.
    bool number(const TraceEvent& event, std::uint64_t& value) const;
    /// Of all other kinds, up to the first zero byte.
    bool text(const TraceEvent& event, std::string_view& value) const;
};

/// The fields of a tracepoint's events, from its file "format": lines "field:TYPE NAME; offset:N; size:N; signed:N;".
struct EventFormat {
    std::uint16_t id = 0;
    std::vector<EventField> fields;

    /// 1 with what is wrong in `error`.
    int parse(std::string_view text, std::string& error);
    /// Null when there is none.
    const EventField* find(std::string_view name) const;

    /// The number by which an event names its format; it opens every event.
    static bool idOf(const TraceEvent& event, std::uint16_t& id);
};

/// One line "field:..." of a format or of a page's header. False when it is none.
bool parseField(std::string_view line, EventField& field);

} // namespace tracefs
