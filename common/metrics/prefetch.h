#pragma once

namespace pwr {

/// Asks for memory that will be written soon; what compilers do not offer it do without.
inline void prefetchForWrite(const void* address) {
#if defined(__GNUC__)
    __builtin_prefetch(address, 1);
#else
    (void)address;
#endif
}

} // namespace pwr
