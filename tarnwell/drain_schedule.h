#pragma once

#include <algorithm>
#include <cstdint>

namespace tarnwell {

/// The instants at which sources that record by themselves are drained: at the tick of every round, and in between often
/// enough for their limited memory. A host that is late goes on at once, and makes up for nothing. All times in ticks
/// of the default clock.
class DrainSchedule {
public:
    /// @p step is the longest time between two drains.
    explicit DrainSchedule(std::uint64_t step) : m_step(step) {}

    /// A round begins to fill.
    void begin(std::uint64_t now) { m_next = now; }
    /// The next tick to drain at for a round that is complete at tick @p at.
    std::uint64_t advance(std::uint64_t now, std::uint64_t at) {
        const std::uint64_t due = m_step < UINT64_MAX - m_next ? m_next + m_step : UINT64_MAX;
        m_next = std::min(at, std::max(now, due));
        return m_next;
    }
    /// What advance() gave last.
    std::uint64_t next() const { return m_next; }

private:
    std::uint64_t m_step;
    std::uint64_t m_next = 0;
};

} // namespace tarnwell
