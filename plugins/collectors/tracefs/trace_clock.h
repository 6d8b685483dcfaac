#pragma once

#include <cmath>
#include <cstdint>

namespace tracefs {

/// Turns the stamps of a trace into ticks of the default clock and back. Where the default clock is the one that the
/// kernel stamps with, both are the same.
class TraceClock {
public:
    TraceClock() = default;
    /// Both clocks at one moment, and the default clock's ticks for each of the trace's.
    TraceClock(std::uint64_t stamp, std::uint64_t tick, double ratio)
        : m_stamp(stamp), m_tick(tick), m_ratio(ratio), m_isSame(false) {}

    std::uint64_t tickOf(std::uint64_t stamp) const {
        return m_isSame ? stamp : moved(m_tick, stamp, m_stamp, m_ratio);
    }
    /// The first stamp that is not before the tick, or one beside it where ticks are coarser.
    std::uint64_t stampOf(std::uint64_t tick) const {
        return m_isSame ? tick : moved(m_stamp, tick, m_tick, 1 / m_ratio);
    }

private:
    static std::uint64_t moved(std::uint64_t base, std::uint64_t value, std::uint64_t from, double ratio) {
        const bool isLater = value >= from;
        const auto distance = static_cast<double>(isLater ? value - from : from - value) * ratio;
        constexpr double LARGEST = 9e18;
        const std::uint64_t rounded =
            distance < LARGEST ? static_cast<std::uint64_t>(std::llround(distance)) : UINT64_MAX;
        if (isLater) {
            return rounded < UINT64_MAX - base ? base + rounded : UINT64_MAX;
        }
        return rounded < base ? base - rounded : 0;
    }

    std::uint64_t m_stamp = 0;
    std::uint64_t m_tick = 0;
    double m_ratio = 1;
    bool m_isSame = true;
};

} // namespace tracefs
