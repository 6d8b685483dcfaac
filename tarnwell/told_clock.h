#pragma once

#include "common/tw_clock.h"

#include <string>

namespace tarnwell {

/// A default clock that is told the time: the clock of a recorded machine, whose moments are stamped in
/// nanoseconds, or that of a saved collection. Replaying either takes no time and gives the same report every time.
class ToldClock : public pwr::TWClockSource {
public:
    ToldClock()
        : ToldClock("1d0a1f0e-6f0c-4f6e-9a3b-0b8f4b3f2c61", "TOLD", "The clock of a recorded machine",
                    kNanosecondsPerMicrosecond) {}
    /// Frequency in MHz.
    ToldClock(const std::string& uuid, const std::string& name, const std::string& description,
              float frequency)
        : TWClockSource(uuid, name, description), m_frequency(frequency) {}

    float getFrequency() const override { return m_frequency; }
    pw_u64_t getTimestamp() const override { return m_now; }

    void tell(pw_u64_t now) { m_now = now; }

private:
    static constexpr float kNanosecondsPerMicrosecond = 1000.0F;

    float m_frequency;
    pw_u64_t m_now = 0;
};

} // namespace tarnwell
