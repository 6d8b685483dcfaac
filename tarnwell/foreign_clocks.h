#pragma once

#include "common/tw_clock.h"

#include <map>
#include <string>
#include <vector>

namespace tarnwell {

/// Brings times of collectors that have a clock of their own into the default clock's time base, by the moments at which
/// all clocks were read together: each time by the latest moment before it, so that a clock's drift does not add up.
class ForeignClocks {
public:
    void addMoment(const std::vector<pwr::TWClockSync>& moment);

    /// The time in ticks of the default clock; one before the first moment is that moment. False when the clock was never
    /// read together with the default clock.
    bool convert(const std::string& clockUUID, pw_u64_t& timestamp) const;

private:
    std::map<std::string, std::vector<pwr::TWClockSync>> m_moments; ///< by clock, in order of time
};

} // namespace tarnwell
