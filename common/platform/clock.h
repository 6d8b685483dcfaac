#pragma once

#include "common/export.h"

#include <cstdint>

namespace pwr::platform {

/// The platform's monotonic counter for measuring time, in ticks of performanceFrequency() a second.
KRCOMMON_API std::uint64_t performanceCounter();

/// In Hz; fixed while the system runs.
KRCOMMON_API std::uint64_t performanceFrequency();

/// The precise wall-clock time in nanoseconds since 1970-01-01 UTC.
KRCOMMON_API std::uint64_t realtimeNanoseconds();

/// The processor's time-stamp counter; where there is none, the performance counter.
KRCOMMON_API std::uint64_t timeStampCounter();

} // namespace pwr::platform
