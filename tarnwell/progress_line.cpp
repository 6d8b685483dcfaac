#include "tarnwell/progress_line.h"

#include "tarnwell/number_words.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace tarnwell {
namespace {

constexpr double kSecondsBetweenLines = 0.2;

} // namespace

void ProgressLine::show(double seconds, double total, std::uint64_t points, std::uint64_t missed) {
    if (!isDue_i(seconds)) {
        return;
    }
    std::array<char, 40> span{};
    if (total > 0) {
        std::snprintf(span.data(), span.size(), "%.1f of %.1f s", seconds, total);
    } else {
        std::snprintf(span.data(), span.size(), "%.1f s", seconds);
    }
    std::string line = "collecting: " + std::string(span.data()) + ", " + std::to_string(points) + " polls";
    line += missed > 0 ? ", " + std::to_string(missed) + " missed" : "";
    line += " (Ctrl-C stops and reports)";
    draw_i(std::move(line));
}

void ProgressLine::showReading(double seconds, std::uint64_t done, std::uint64_t all) {
    if (isDue_i(seconds)) {
        const std::uint64_t percent = all < 100 ? 100 : std::min<std::uint64_t>(done / (all / 100), 100);
        draw_i("reading: " + std::to_string(percent) + " % of " + byteCount(all));
    }
}

bool ProgressLine::isDue_i(double seconds) {
    if (!m_enabled || (m_shownAt >= 0 && seconds - m_shownAt < kSecondsBetweenLines)) {
        return false;
    }
    m_shownAt = seconds;
    return true;
}

void ProgressLine::draw_i(std::string line) {
    const std::size_t width = line.size();
    if (width < m_width) {
        line.append(m_width - width, ' ');
    }
    m_width = width;
    std::fprintf(stderr, "\r%s", line.c_str());
    std::fflush(stderr);
}

void ProgressLine::clear() {
    if (m_width > 0) {
        std::fprintf(stderr, "\r%s\r", std::string(m_width, ' ').c_str());
        std::fflush(stderr);
        m_width = 0;
    }
}

} // namespace tarnwell
