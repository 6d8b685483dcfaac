#include "tarnwell/collection_clock.h"

#include "common/machine_files.h"
#include "common/platform/interrupt.h"

#include <algorithm>

namespace tarnwell {
namespace {

constexpr double kHertzPerMegahertz = 1e6;
constexpr double kNanosecondsPerSecond = 1e9;
// Long waits are cut so that a progress line can move and a changed clock is noticed.
constexpr double kLongestSleepNanoseconds = 250e6;

} // namespace

CollectionClock::CollectionClock(const pwr::MachineFiles& machine) {
    if (machine.moments().empty()) {
        m_source = std::make_unique<pwr::TWQPCClock>();
        return;
    }
    auto told = std::make_unique<ToldClock>();
    told->tell(machine.moments().front());
    m_naturalStop = machine.moments().back();
    m_told = told.get();
    m_source = std::move(told);
}

CollectionClock::~CollectionClock() = default;

double CollectionClock::ticksPerSecond() const {
    return static_cast<double>(m_source->getFrequency()) * kHertzPerMegahertz;
}

void CollectionClock::waitUntil(std::uint64_t deadline, pwr::platform::ChildProcess* child) {
    if (m_told != nullptr) {
        m_told->tell(deadline);
        return;
    }
    const std::uint64_t current = now();
    if (current < deadline) {
        const double nanoseconds =
            static_cast<double>(deadline - current) / ticksPerSecond() * kNanosecondsPerSecond;
        const double sleep = std::min(nanoseconds, kLongestSleepNanoseconds);
        pwr::platform::waitForEvent(static_cast<std::uint64_t>(sleep), child);
    }
}

} // namespace tarnwell
