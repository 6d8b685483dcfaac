#pragma once

#include "common/pw_types.h"

namespace pwr {

/// Packs a version of the saved format: year in the high 16 bits, minor in bits 8 to 15, patch in
/// bits 0 to 7. Packed versions compare as numbers: 2024.2.255 is below 2024.3.0.
constexpr pw_u32_t packSavedVersion(pw_u16_t year, pw_u8_t minor, pw_u8_t patch) {
    return pw_u32_t{year} << 16 | pw_u32_t{minor} << 8 | pw_u32_t{patch};
}

/// The format that this library writes. A collection carries it as its application version, and
/// readers decide by it which items a file holds.
inline constexpr pw_u32_t c_currentSavedVersion = packSavedVersion(2025, 5, 1);

static_assert(c_currentSavedVersion == 132711681);

} // namespace pwr
