#pragma once

#include <cstdint>

namespace tarnwell {

/// The instants at which a collection polls: begin + n x interval, whatever the reads cost, so that
/// delays do not add up. A tick that has passed while the reads of an earlier one still ran is missed:
/// it is counted and left out, never made up for in a burst. All times in ticks of the default clock.
class PollSchedule {
public:
    PollSchedule(std::uint64_t begin, std::uint64_t interval, std::uint64_t stop)
        : m_begin(begin), m_interval(interval), m_stop(stop) {}

    /// The next tick later than @p now, or the stop when that comes first.
    std::uint64_t nextDeadline(std::uint64_t now) {
        const std::uint64_t elapsed = now < m_begin ? 0 : now - m_begin;
        const std::uint64_t due = elapsed / m_interval + 1;
        const std::uint64_t last = lastTickBeforeStop_i();
        const std::uint64_t next = due > m_tick ? due : m_tick + 1;
        const std::uint64_t reachable = next <= last ? next : last + 1;
        m_missed += reachable - (m_tick + 1);
        m_tick = reachable;
        return next <= last ? m_begin + next * m_interval : m_stop;
    }

    bool isStop(std::uint64_t deadline) const { return deadline == m_stop; }
    std::uint64_t missed() const { return m_missed; }

private:
    /// The stop has a read of its own, so a tick that falls on it is not a poll.
    std::uint64_t lastTickBeforeStop_i() const {
        return m_stop <= m_begin ? 0 : (m_stop - m_begin - 1) / m_interval;
    }

    std::uint64_t m_begin;
    std::uint64_t m_interval;
    std::uint64_t m_stop;
    std::uint64_t m_tick = 0;
    std::uint64_t m_missed = 0;
};

} // namespace tarnwell
