#include "plugins/collectors/tracefs/event_format.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

namespace tracefs {

namespace {

constexpr std::uint32_t LARGEST_NUMBER = 8;
constexpr std::uint32_t PLACE_BYTES = 4;
constexpr unsigned LENGTH_SHIFT = 16;
constexpr std::uint32_t OFFSET_MASK = 0xFFFF;
constexpr unsigned BYTE_BITS = 8;

std::string_view trim(std::string_view text) {
    constexpr std::string_view BLANKS = " \t\r";
    text.remove_prefix(std::min(text.find_first_not_of(BLANKS), text.size()));
    return text.substr(0, text.find_last_not_of(BLANKS) + 1);
}

std::string_view takeUntil(std::string_view& text, char end) {
    const std::size_t at = std::min(text.find(end), text.size());
    const std::string_view part = text.substr(0, at);
    text.remove_prefix(std::min(at + 1, text.size()));
    return trim(part);
}

/// "WORD:N"; false when it is anything else.
template <class Number> bool takeNumber(std::string_view& line, std::string_view word, Number& number) {
    std::string_view part = takeUntil(line, ';');
    if (!part.starts_with(word) || part.size() <= word.size() || part[word.size()] != ':') {
        return false;
    }
    part = trim(part.substr(word.size() + 1));
    const auto [end, error] = std::from_chars(part.data(), part.data() + part.size(), number);
    return error == std::errc() && end == part.data() + part.size();
}

/// What the declaration, such as "__data_loc char[] name" or "char comm[16]", makes of the field.
void readDeclaration(std::string_view declaration, EventField& field) {
    std::string_view name = declaration;
    const bool isArray = name.ends_with(']');
    if (isArray) {
        name = trim(name.substr(0, name.rfind('[')));
    }
    const std::size_t blank = name.rfind(' ');
    field.name = name.substr(blank == std::string_view::npos ? 0 : blank + 1);
    if (declaration.starts_with("__data_loc ")) {
        field.kind = EventField::Kind::DYNAMIC;
    } else if (declaration.starts_with("__rel_loc ")) {
        field.kind = EventField::Kind::RELATIVE;
    } else {
        field.kind = isArray ? EventField::Kind::TEXT : EventField::Kind::NUMBER;
    }
}

bool readPlain(const TraceEvent& event, std::uint32_t offset, std::uint32_t size, std::uint64_t& value) {
    if (size == 0 || size > LARGEST_NUMBER || offset > event.size || size > event.size - offset) {
        return false;
    }
    value = 0;
    // Recorded by processors that put the lowest byte first, as all that this runs on do.
    std::memcpy(&value, event.data + offset, size);
    return true;
}

} // namespace

bool parseField(std::string_view line, EventField& field) {
    constexpr std::string_view HEAD = "field:";
    line = trim(line);
    if (!line.starts_with(HEAD)) {
        return false;
    }
    line.remove_prefix(HEAD.size());
    readDeclaration(takeUntil(line, ';'), field);
    unsigned isSigned = 0;
    const bool isWhole = takeNumber(line, "offset", field.offset) && takeNumber(line, "size", field.size) &&
                         takeNumber(line, "signed", isSigned);
    field.isSigned = isSigned != 0;
    return isWhole && !field.name.empty();
}

bool EventField::number(const TraceEvent& event, std::uint64_t& value) const {
    if (kind != Kind::NUMBER || !readPlain(event, offset, size, value)) {
        return false;
    }
    const unsigned bits = size * BYTE_BITS;
    if (isSigned && size < LARGEST_NUMBER && (value >> (bits - 1)) != 0) {
        value |= ~std::uint64_t{0} << bits;
    }
    return true;
}

bool EventField::text(const TraceEvent& event, std::string_view& value) const {
    std::size_t begin = offset;
    std::size_t length = size;
    if (kind == Kind::DYNAMIC || kind == Kind::RELATIVE) {
        std::uint64_t place = 0;
        if (!readPlain(event, offset, PLACE_BYTES, place)) {
            return false;
        }
        begin = (place & OFFSET_MASK) + (kind == Kind::RELATIVE ? offset + std::size_t{PLACE_BYTES} : 0);
        length = static_cast<std::size_t>(place >> LENGTH_SHIFT);
    }
    if (kind == Kind::NUMBER || begin > event.size || length > event.size - begin) {
        return false;
    }
    value = std::string_view(event.data + begin, length);
    value = value.substr(0, value.find('\0'));
    return true;
}

int EventFormat::parse(std::string_view text, std::string& error) {
    bool hasId = false;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        hasId = hasId || takeNumber(line, "ID", id);
        if (EventField field; trim(line).starts_with("field:")) {
            if (!parseField(line, field)) {
                error = "a field of its format cannot be understood: " + std::string(trim(line));
                return 1;
            }
            fields.push_back(std::move(field));
        }
    }
    if (!hasId) {
        error = "its format has no ID";
    }
    return hasId ? 0 : 1;
}

const EventField* EventFormat::find(std::string_view name) const {
    const auto found = std::find_if(fields.begin(), fields.end(),
                                    [&](const EventField& field) { return field.name == name; });
    return found == fields.end() ? nullptr : &*found;
}

bool EventFormat::idOf(const TraceEvent& event, std::uint16_t& id) {
    if (event.size < sizeof id) {
        return false;
    }
    std::memcpy(&id, event.data, sizeof id);
    return true;
}

} // namespace tracefs
