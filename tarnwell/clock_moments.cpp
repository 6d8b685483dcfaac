#include "tarnwell/clock_moments.h"

#include "common/metadata/system_metadata.h"

#include <algorithm>

namespace tarnwell {
namespace {

constexpr int kTries = 16;
constexpr double kTicksPerMegahertz = 1e6;
// Two readings are less than a microsecond apart, so after this time the measured frequency is good to some 10 ppm,
// which the nominal one of a processor often is not.
constexpr double kEnoughSeconds = 0.1;
constexpr pw_u64_t kNanosecondsPerMicrosecond = 1000;

} // namespace

ClockMoments::ClockMoments(const pwr::TWClockSource& defaultClock, double counterMHz)
    : m_default(defaultClock), m_toldMHz(counterMHz), m_firstCounter() {
    std::vector<pwr::TWClockSource*> clocks;
    pwr::getTWSystemClockSources(pwr::SystemMetadata(), clocks);
    m_clocks.reserve(clocks.size());
    for (pwr::TWClockSource* const clock : clocks) {
        m_clocks.emplace_back(clock);
    }
    const bool isOfSystem = std::any_of(m_clocks.begin(), m_clocks.end(), [&](const auto& clock) {
        return clock->getUUID() == defaultClock.getUUID();
    });
    if (!isOfSystem) {
        m_clocks.clear();
    }
    for (const auto& clock : m_clocks) {
        if (dynamic_cast<const pwr::TWTSCClock*>(clock.get()) != nullptr) {
            m_firstCounter = syncOf_i(*clock);
        }
    }
}

ClockMoments::~ClockMoments() = default;

std::vector<pwr::TWClockSync> ClockMoments::take() const {
    std::vector<pwr::TWClockSync> syncs;
    if (m_clocks.empty()) {
        syncs.push_back(syncOf_i(m_default));
        return syncs;
    }
    for (const auto& clock : m_clocks) {
        pwr::TWClockSync sync = syncOf_i(*clock);
        if (sync.clockUUID == m_firstCounter.clockUUID && sync.clockUUID != m_default.getUUID()) {
            sync.clockFrequency = counterFrequency_i(sync);
        }
        syncs.push_back(std::move(sync));
    }
    return syncs;
}

pwr::TWClockSync ClockMoments::syncOf_i(const pwr::TWClockSource& clock) const {
    pwr::TWClockSync sync{clock.getUUID(),     clock.getName(),     clock.getFrequency(),     0,
                          m_default.getUUID(), m_default.getName(), m_default.getFrequency(), 0};
    if (clock.getUUID() == m_default.getUUID()) {
        sync.clockFrequency = sync.defaultClockFrequency;
        sync.clockValue = m_default.getTimestamp();
        sync.defaultClockValue = sync.clockValue;
        return sync;
    }
    pw_u64_t closest = UINT64_MAX;
    for (int i = 0; i < kTries && closest > 0; ++i) {
        const pw_u64_t before = m_default.getTimestamp();
        const pw_u64_t value = clock.getTimestamp();
        const pw_u64_t apart = m_default.getTimestamp() - before;
        if (apart < closest) {
            closest = apart;
            sync.clockValue = value;
            sync.defaultClockValue = before + apart / 2;
        }
    }
    return sync;
}

float ClockMoments::counterFrequency_i(const pwr::TWClockSync& now) const {
    const auto ticks = static_cast<double>(now.defaultClockValue - m_firstCounter.defaultClockValue);
    const double seconds = ticks / (static_cast<double>(now.defaultClockFrequency) * kTicksPerMegahertz);
    // A counter that fell back (the processor slept, or is another one) measures nothing.
    const bool isMeasured = ticks > 0 && now.clockValue > m_firstCounter.clockValue;
    if (!isMeasured || (m_toldMHz > 0 && seconds < kEnoughSeconds)) {
        return static_cast<float>(m_toldMHz);
    }
    const auto counted = static_cast<double>(now.clockValue - m_firstCounter.clockValue);
    return static_cast<float>(counted / (seconds * kTicksPerMegahertz));
}

pw_u64_t wallClockMicroseconds() {
    return pwr::TWNanoClock().getTimestamp() / kNanosecondsPerMicrosecond;
}

} // namespace tarnwell
