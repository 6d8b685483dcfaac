#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace tracefs {

/// Kilobytes of the kernel's ring buffer for each processor. Eight megabytes hold more than a second of 100,000 of the
/// largest usual events (a change of tasks takes 64 bytes), so the reader, which comes twenty times a second, may be late
/// by half a second at twice that rate on one processor. All buffers together take at most a 32nd of the memory, but
/// never less than a quarter of a megabyte each, which twenty reads a second need for 80,000 events a second.
inline std::size_t bufferKilobytes(std::uint64_t memoryBytes, std::size_t processors) {
    constexpr std::uint64_t WANTED = 8192;
    constexpr std::uint64_t LEAST = 256;
    constexpr std::uint64_t SHARE = 32;
    constexpr std::uint64_t KILOBYTE = 1024;
    const std::uint64_t share = memoryBytes / KILOBYTE / SHARE / std::max<std::uint64_t>(processors, 1);
    return static_cast<std::size_t>(std::clamp(share, LEAST, WANTED));
}

} // namespace tracefs
