#pragma once

#include "common/export.h"

#include <atomic>
#include <cstdint>

namespace pwr::platform {

/// A flag that one thread sets and one thread takes: setting it lets a single waiter through, which resets it. Set
/// while nobody waits it stays set; set twice it lets one through all the same. Not set in the beginning.
/// A waiter looks for some 50 microseconds before it sleeps, because falling asleep and being woken cost more where the
/// other thread runs on another processor. Where looking never pays, as on a single processor, it stops by itself.
/// Threads: all calls on any thread, until the object ends.
class KRCOMMON_API AutoResetEvent {
public:
    AutoResetEvent() = default;
    AutoResetEvent(const AutoResetEvent&) = delete;
    AutoResetEvent& operator=(const AutoResetEvent&) = delete;

    void set();
    /// set() in two steps, for who sets it with a lock held that guards its life. True when somebody sleeps, whom
    /// wakeOne() is to wake; that only needs the place where the event was.
    bool raise();
    void wakeOne();
    void wait();
    /// False when it was not set for so long. It does not look first: who limits a wait expects a long one.
    bool waitFor(std::uint64_t nanoseconds);

private:
    bool takeIfSet_i();
    bool look_i();
    bool isResting_i();
    bool sleep_i(std::uint64_t nanoseconds);

    static constexpr std::uint32_t FIRST_CONFIDENCE = 4;
    static constexpr std::uint32_t MOST_CONFIDENCE = 8;

    std::atomic<std::uint32_t> m_state{0};
    std::atomic<std::uint32_t> m_confidence{FIRST_CONFIDENCE}; ///< that looking pays; 0: it does not
    std::atomic<std::uint32_t> m_notLooked{0};                 ///< waits since the last try
    std::atomic<std::uint32_t> m_rest{0};                      ///< waits until the next one
};

} // namespace pwr::platform
