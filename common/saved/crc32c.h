#pragma once

#include "common/export.h"
#include "common/pw_types.h"

#include <cstddef>

namespace pwr::saved {

/// The CRC-32C (Castagnoli) of the bytes. For bytes in several pieces, the result so far is given as `before`.
KRCOMMON_API pw_u32_t crc32c(const char* bytes, std::size_t size, pw_u32_t before = 0);

/// Whether a checksum that was read is the one of the bytes. Fuzz builds say yes to all, since random bytes would
/// hardly ever pass and what lies behind would never be reached.
inline bool isChecksum([[maybe_unused]] pw_u32_t stored, [[maybe_unused]] pw_u32_t computed) {
#if defined(FUZZING_BUILD_MODE_UNSAFE_FOR_PRODUCTION)
    return true;
#else
    return stored == computed;
#endif
}

} // namespace pwr::saved
