#include "common/platform/clock.h"
#include "common/platform/win32/wide_text.h"

namespace pwr::platform {

std::uint64_t performanceCounter() {
    LARGE_INTEGER counter;
    QueryPerformanceCounter(&counter);
    return static_cast<std::uint64_t>(counter.QuadPart);
}

std::uint64_t performanceFrequency() {
    LARGE_INTEGER frequency;
    QueryPerformanceFrequency(&frequency);
    return static_cast<std::uint64_t>(frequency.QuadPart);
}

std::uint64_t realtimeNanoseconds() {
    // From 1601-01-01 to 1970-01-01; beyond the signed range, as is the sum that it is taken from.
    constexpr std::uint64_t epochNanoseconds = 11'644'473'600'000'000'000ULL;
    FILETIME time;
    GetSystemTimePreciseAsFileTime(&time);
    const std::uint64_t intervals = (std::uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime;
    return intervals * 100 - epochNanoseconds;
}

} // namespace pwr::platform
