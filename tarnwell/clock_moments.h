#pragma once

#include "common/tw_clock.h"

#include <memory>
#include <vector>

namespace tarnwell {

/// Relates the system's clocks to the default clock of a collection, at as many moments as wanted: usually
/// at its begin and at its end. A default clock that is none of the system's (the told clock of a recorded
/// machine) has no relation to them; it gets its own alone, so that replays stay the same.
///
/// The time-stamp counter's frequency cannot be read from it, so it is measured against the default clock from
/// the moment of construction on: make the object early, and the begin knows it already.
/// Threads: one at a time. @p defaultClock must outlive the object.
class ClockMoments {
public:
    /// @p counterMHz is what the processor tells of the counter's frequency, 0 when it does not; it is used
    /// until measuring is more exact than the two readings of a clock can be apart.
    explicit ClockMoments(const pwr::TWClockSource& defaultClock, double counterMHz = 0);
    ClockMoments(const ClockMoments&) = delete;
    ClockMoments& operator=(const ClockMoments&) = delete;
    ~ClockMoments();

    /// Reads all clocks now, in the order QPC, NANO, TSC. Each reading stands between two readings of the default
    /// clock, whose middle is its moment; of a few tries the one with the two closest together is taken.
    std::vector<pwr::TWClockSync> take() const;

private:
    pwr::TWClockSync syncOf_i(const pwr::TWClockSource& clock) const;
    float counterFrequency_i(const pwr::TWClockSync& now) const;

    const pwr::TWClockSource& m_default;
    double m_toldMHz;
    std::vector<std::unique_ptr<pwr::TWClockSource>> m_clocks;
    pwr::TWClockSync m_firstCounter; ///< where measuring began; all empty without a counter
};

/// The wall clock, microseconds since 1970 UTC: what the record's time values hold.
pw_u64_t wallClockMicroseconds();

} // namespace tarnwell
