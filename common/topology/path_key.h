#pragma once

#include "common/pw_types.h"

namespace pwr {

/// What a topology text and a caller write for a level that the machine does not have.
inline constexpr int c_absentId = -1;

/// The key of a package, where each path starts.
constexpr pw_u64_t pathKey(int id) {
    return static_cast<pw_u32_t>(id);
}

/// The key of a node below another: shifted unsigned, so that deep paths lose their topmost ids
/// instead of running into the sign.
constexpr pw_u64_t pathKey(pw_u64_t parentKey, int id) {
    return parentKey << 16 | static_cast<pw_u32_t>(id);
}

} // namespace pwr
