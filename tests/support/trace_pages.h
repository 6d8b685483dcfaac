#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

namespace tests {

/// Pages of a kernel's trace of one processor, made as the kernel makes them.
class TracePages {
public:
    static constexpr std::size_t HEAD = 16;

    explicit TracePages(std::size_t pageSize) : m_dataSize(pageSize - HEAD) {}

    /// What the kernel says of such pages.
    static std::string layout(std::size_t pageSize) {
        return "\tfield: u64 timestamp;\toffset:0;\tsize:8;\tsigned:0;\n"
               "\tfield: local_t commit;\toffset:8;\tsize:8;\tsigned:1;\n"
               "\tfield: int overwrite;\toffset:8;\tsize:1;\tsigned:1;\n"
               "\tfield: char data;\toffset:16;\tsize:" +
               std::to_string(pageSize - HEAD) + ";\tsigned:0;\n";
    }

    /// Bytes of a number, the lowest first.
    static std::string number(std::uint64_t value, std::size_t bytes) {
        std::string text(bytes, '\0');
        std::memcpy(text.data(), &value, bytes);
        return text;
    }
    /// What opens every event: the number of its format, and whom it happened to.
    static std::string eventHead(std::uint16_t id) { return number(id, 2) + number(0, 2) + number(1, 4); }

    void event(std::uint64_t time, std::string data) {
        data.resize((data.size() + 3) / 4 * 4);
        const bool isLong = data.size() > LONGEST_SHORT;
        const std::size_t size = data.size() + (isLong ? 8 : 4);
        std::uint64_t delta = m_page.empty() ? 0 : time - m_time;
        if (m_page.size() + size + (delta > HIGHEST_DELTA ? 8 : 0) > m_dataSize) {
            endPage();
        }
        if (m_page.empty()) {
            m_begin = time;
            delta = 0;
        }
        if (delta > HIGHEST_DELTA) {
            entry(30, delta & HIGHEST_DELTA);
            raw(number(delta >> 27U, 4));
            delta = 0;
        }
        entry(isLong ? 0 : static_cast<std::uint32_t>(data.size() / 4), delta);
        raw((isLong ? number(data.size() + 4, 4) : "") + data);
        m_time = time;
    }
    /// An entry of any type, and any bytes behind it.
    void entry(std::uint32_t type, std::uint64_t time) { raw(number(type | time << 5U, 4)); }
    void raw(const std::string& bytes) { m_page += bytes; }
    void begin(std::uint64_t time) { m_begin = m_time = time; }

    /// Ends the page. The next one says that events before it were lost, and how many when there is room.
    void lose(std::uint64_t count) {
        endPage();
        m_lost = count;
    }
    void endPage() {
        if (m_page.empty()) {
            return;
        }
        std::uint64_t commit = m_page.size();
        std::string rest;
        if (m_lost > 0) {
            commit |= 1U << 31U;
            if (m_dataSize - m_page.size() >= 8) {
                commit |= 1U << 30U;
                rest = number(m_lost, 8);
            }
        }
        std::string page = number(m_begin, 8) + number(commit, 8) + m_page + rest;
        page.resize(m_dataSize + HEAD);
        m_pages += page;
        m_page.clear();
        m_lost = 0;
    }
    const std::string& bytes() {
        endPage();
        return m_pages;
    }

private:
    static constexpr std::uint64_t HIGHEST_DELTA = (1U << 27U) - 1;
    static constexpr std::size_t LONGEST_SHORT = 112;

    std::size_t m_dataSize;
    std::string m_page, m_pages;
    std::uint64_t m_begin = 0, m_time = 0, m_lost = 0;
};

} // namespace tests
