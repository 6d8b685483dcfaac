#include "common/platform/clock.h"

#include <ctime>

namespace pwr::platform {

namespace {

constexpr std::uint64_t NANOSECONDS_PER_SECOND = 1'000'000'000;

std::uint64_t readNanoseconds(clockid_t clock) {
    timespec now{};
    clock_gettime(clock, &now);
    return static_cast<std::uint64_t>(now.tv_sec) * NANOSECONDS_PER_SECOND +
           static_cast<std::uint64_t>(now.tv_nsec);
}

} // namespace

std::uint64_t performanceCounter() {
    return readNanoseconds(CLOCK_MONOTONIC);
}

std::uint64_t performanceFrequency() {
    return NANOSECONDS_PER_SECOND;
}

std::uint64_t realtimeNanoseconds() {
    return readNanoseconds(CLOCK_REALTIME);
}

} // namespace pwr::platform
