#include "common/platform/clock.h"

#if defined(__x86_64__) || defined(__i386__)
#include <x86intrin.h>

namespace pwr::platform {

std::uint64_t timeStampCounter() {
    return __rdtsc();
}

} // namespace pwr::platform
#else
namespace pwr::platform {

std::uint64_t timeStampCounter() {
    return performanceCounter();
}

} // namespace pwr::platform
#endif
