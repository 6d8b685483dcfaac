#include "tarnwell/foreign_clocks.h"

#include <algorithm>

namespace tarnwell {

void ForeignClocks::addMoment(const std::vector<pwr::TWClockSync>& moment) {
    for (const pwr::TWClockSync& sync : moment) {
        m_moments[sync.clockUUID].push_back(sync);
    }
}

bool ForeignClocks::convert(const std::string& clockUUID, pw_u64_t& timestamp) const {
    const auto clock = m_moments.find(clockUUID);
    if (clock == m_moments.end()) {
        return false;
    }
    const auto& moments = clock->second;
    const auto later = std::upper_bound(
        moments.begin(), moments.end(), timestamp,
        [](pw_u64_t time, const pwr::TWClockSync& moment) { return time < moment.clockValue; });
    timestamp = later == moments.begin() ? moments.front().defaultClockValue
                                         : pwr::convertTimestamp(*(later - 1), timestamp);
    return true;
}

} // namespace tarnwell
