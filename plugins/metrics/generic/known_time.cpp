#include "plugins/metrics/generic/known_time.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace pwr {

void KnownTime::begin(std::size_t row, std::uint64_t tick) {
    Row& known = m_rows[row];
    if (known.first == 0) {
        known.first = tick;
    } else if (tick > known.last) {
        known.inGaps += tick - known.last;
    }
    known.last = tick;
}

std::uint64_t KnownTime::lastStateTicks(std::size_t row) const {
    const Row& known = m_rows[row];
    return known.last > known.change ? known.last - known.change : 1;
}

std::string KnownTime::note(std::uint64_t start, std::uint64_t stop) const {
    const std::uint64_t length = stop > start ? stop - start : 0;
    std::uint64_t unknown = 0;
    std::size_t silent = 0;
    for (const Row& row : m_rows) {
        silent += row.first == 0 ? 1 : 0;
        const std::uint64_t before = row.first > start ? row.first - start : 0;
        unknown += row.first == 0 ? length : std::min(length, before + row.inGaps);
    }
    if (unknown == 0 || length == 0) {
        return {};
    }
    constexpr double PERCENT = 100.0;
    constexpr int DIGITS = 2;
    const double all = static_cast<double>(length) * static_cast<double>(m_rows.size());
    // Rounded down, because "100.00 %" would say that nothing is missing.
    constexpr double STEPS = 100.0;
    const double share = (1.0 - static_cast<double>(unknown) / all) * PERCENT;
    const double shown =
        static_cast<double>(static_cast<std::uint64_t>(std::max(share, 0.0) * STEPS)) / STEPS;
    std::array<char, 32> text{};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), shown, std::chars_format::fixed, DIGITS);
    std::string note = "The states are known for " + std::string(text.data(), end.ptr) +
                       " % of the time: not before the first event, and not where events were lost";
    if (silent > 0) {
        note += "; without any event: " + std::to_string(silent) + " of " + std::to_string(m_rows.size());
    }
    return note;
}

} // namespace pwr
