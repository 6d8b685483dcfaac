#pragma once

#include "common/plugin/plugin_environment.h"
#include "common/tw_clock.h"

namespace tests {

/// A default clock of 1000 MHz that stands still until it is told the time; installed while it lives.
class ToldClock : public pwr::TWClockSource {
public:
    explicit ToldClock(pw_u64_t begin = 0)
        : TWClockSource("0e2f3a52-told", "TOLD", "A clock that is told the time"), now(begin),
          m_old(g_pluginEnvironment->getDefaultClock()) {
        g_pluginEnvironment->setDefaultClock(this);
    }
    ~ToldClock() override { g_pluginEnvironment->setDefaultClock(m_old); }

    float getFrequency() const override { return 1000.0F; }
    pw_u64_t getTimestamp() const override { return now; }

    pw_u64_t now;

private:
    pwr::TWClockSource* m_old;
};

} // namespace tests
