#include "plugins/collectors/tracefs/page_decoder.h"

#include <algorithm>
#include <cstring>

namespace tracefs {

namespace {

// The kernel describes its events in "events/header_event": 5 bits type or length, 27 bits time, then words.
constexpr unsigned TYPE_BITS = 5;
constexpr unsigned TIME_BITS = 27;
constexpr std::uint32_t TYPE_MASK = (1U << TYPE_BITS) - 1;
constexpr std::uint32_t LONG_DATA = 0; // the first word has the length
constexpr std::uint32_t PADDING = 29;
constexpr std::uint32_t TIME_EXTEND = 30;
constexpr std::uint32_t TIME_STAMP = 31;
constexpr std::size_t WORD = 4;

// The highest bits of a stamp do not fit into its event and are those of the time before.
constexpr unsigned STAMP_BITS = 59;
constexpr std::uint64_t STAMP_HIGH = ~std::uint64_t{0} << STAMP_BITS;

// The page's length has these flags above it.
constexpr std::uint64_t LENGTH_MASK = (1U << TIME_BITS) - 1;
constexpr std::uint64_t HAS_LOST = 1U << 31U;
constexpr std::uint64_t TELLS_LOST = 1U << 30U;

constexpr std::size_t LARGEST_PAGE = std::size_t{1} << 20U;

std::uint32_t wordAt(const char* bytes) {
    std::uint32_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

} // namespace

int PageLayout::parse(std::string_view text, std::string& error) {
    EventField data;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        EventField field;
        if (parseField(text.substr(0, end), field)) {
            EventField& known = field.name == "timestamp" ? timestamp
                                : field.name == "commit"  ? commit
                                                          : data;
            if (&known != &data || field.name == "data") {
                known = field;
            }
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    dataOffset = data.offset;
    pageSize = dataOffset + data.size;
    const bool isWhole = timestamp.size == sizeof(std::uint64_t) && commit.size >= WORD && data.size > 0 &&
                         dataOffset >= timestamp.offset + std::size_t{timestamp.size} &&
                         dataOffset >= commit.offset + std::size_t{commit.size} && pageSize <= LARGEST_PAGE;
    if (!isWhole) {
        error = "the layout of the trace's pages cannot be understood";
    }
    return isWhole ? 0 : 1;
}

int PageDecoder::load(std::span<const char> page) {
    m_rest = {};
    m_lost = 0;
    m_isDamaged = false;
    const TraceEvent whole{0, page.data(), page.size()};
    std::uint64_t commit = 0;
    if (page.size() < m_layout->dataOffset || !m_layout->timestamp.number(whole, m_time) ||
        !m_layout->commit.number(whole, commit)) {
        fail_i();
        return 1;
    }
    const std::span<const char> data = page.subspan(m_layout->dataOffset);
    const auto length = static_cast<std::size_t>(commit & LENGTH_MASK);
    if (length > data.size()) {
        fail_i();
        return 1;
    }
    m_rest = data.subspan(0, length);
    if ((commit & HAS_LOST) != 0) {
        m_lost = 1;
        if ((commit & TELLS_LOST) != 0 && data.size() - length >= sizeof m_lost) {
            std::memcpy(&m_lost, data.data() + length, sizeof m_lost);
            m_lost = std::max<std::uint64_t>(m_lost, 1);
        }
    }
    return 0;
}

bool PageDecoder::next(TraceEvent& event) {
    bool isEvent = false;
    while (!isEvent) {
        if (m_rest.size() < WORD || !step_i(event, isEvent)) {
            return false;
        }
    }
    return true;
}

/// One entry of the page: an event, or what only moves the time. False behind the last.
bool PageDecoder::step_i(TraceEvent& event, bool& isEvent) {
    const std::uint32_t head = wordAt(m_rest.data());
    const std::uint32_t type = head & TYPE_MASK;
    const std::uint64_t time = head >> TYPE_BITS;
    std::size_t begin = WORD;
    std::size_t size = type * WORD;
    if (type == LONG_DATA || type > PADDING - 1) {
        if (type == PADDING && time == 0) {
            m_rest = {}; // nothing follows
            return false;
        }
        if (m_rest.size() < 2 * WORD) {
            return fail_i();
        }
        const std::uint32_t word = wordAt(m_rest.data() + WORD);
        if (type == TIME_EXTEND) {
            m_time += (std::uint64_t{word} << TIME_BITS) + time;
        } else if (type == TIME_STAMP) {
            m_time = (m_time & STAMP_HIGH) | ((std::uint64_t{word} << TIME_BITS) + time);
        }
        const bool isLong = type == LONG_DATA || type == PADDING;
        if (isLong && word < WORD) {
            return fail_i();
        }
        begin = 2 * WORD;
        size = isLong ? word - WORD : 0;
    }
    if (size > m_rest.size() - begin) {
        return fail_i();
    }
    isEvent = type < PADDING;
    if (isEvent) {
        m_time += time;
        event = {m_time, m_rest.data() + begin, size};
    }
    m_rest = m_rest.subspan(begin + size);
    return true;
}

} // namespace tracefs
