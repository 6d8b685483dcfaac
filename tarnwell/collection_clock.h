#pragma once

#include "common/tw_clock.h"
#include "tarnwell/told_clock.h"

#include <cstdint>
#include <memory>

namespace pwr {
class MachineFiles;
namespace platform {
class ChildProcess;
}
} // namespace pwr

namespace tarnwell {

/// The collection's time: the system's performance counter for a live machine, told time for a
/// recorded one. Owns the clock that the environment's default clock slot points to.
class CollectionClock {
public:
    explicit CollectionClock(const pwr::MachineFiles& machine);
    CollectionClock(const CollectionClock&) = delete;
    CollectionClock& operator=(const CollectionClock&) = delete;
    ~CollectionClock();

    pwr::TWClockSource& source() const { return *m_source; }
    bool isRecorded() const { return m_told != nullptr; }
    std::uint64_t now() const { return m_source->getTimestamp(); }
    double ticksPerSecond() const;

    /// Where a collection without a given end stops: never for a live machine, else the last recorded moment.
    std::uint64_t naturalStop() const { return m_naturalStop; }

    /// 0 when the tick has come, and always for told time, which stands still while anybody else works.
    std::uint64_t nanosecondsUntil(std::uint64_t tick) const;

    /// Waits until @p deadline; returns early on an interrupt or when @p child ends. Told time just moves.
    void waitUntil(std::uint64_t deadline, pwr::platform::ChildProcess* child);

private:
    std::unique_ptr<pwr::TWClockSource> m_source;
    ToldClock* m_told = nullptr;
    std::uint64_t m_naturalStop = UINT64_MAX;
};

} // namespace tarnwell
