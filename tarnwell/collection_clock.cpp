#include "tarnwell/collection_clock.h"

#include "common/machine_files.h"
#include "common/platform/interrupt.h"

#include <algorithm>
#include <cmath>

namespace tarnwell {
namespace {

constexpr double kHertzPerMegahertz = 1e6;
constexpr double kNanosecondsPerSecond = 1e9;
// Long waits are cut so that a progress line can move and a changed clock is noticed.
constexpr std::uint64_t kLongestSleepNanoseconds = 250000000;
// What is farther away than years is waited for in pieces.
constexpr double kLongestNanoseconds = 1e17;

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
    if (const std::uint64_t left = nanosecondsUntil(deadline); left > 0) {
        pwr::platform::waitForEvent(std::min(left, kLongestSleepNanoseconds), child);
    }
}

std::uint64_t CollectionClock::nanosecondsUntil(std::uint64_t tick) const {
    const std::uint64_t current = now();
    if (m_told != nullptr || current >= tick) {
        return 0;
    }
    const double nanoseconds = static_cast<double>(tick - current) / ticksPerSecond() * kNanosecondsPerSecond;
    return nanoseconds < kLongestNanoseconds ? static_cast<std::uint64_t>(std::ceil(nanoseconds))
                                             : static_cast<std::uint64_t>(kLongestNanoseconds);
}

} // namespace tarnwell
