#pragma once

#include "common/pw_types.h"

#include <string>
#include <vector>

namespace pwr::saved {

/// One stretch of a file that could not be used.
struct Damage {
    pw_u64_t offset = 0; ///< where it begins, bytes from the start of the file
    pw_u64_t length = 0; ///< bytes that were skipped
    std::string kind;    ///< what stood there, such as "samples"; "unknown" when that is lost too
    std::string reason;  ///< such as "checksum differs"
};

/// What a reader found wrong so far. Complete once the last reading was taken.
struct DamageReport {
    std::vector<Damage> stretches;
    pw_u64_t lostBlocks = 0; ///< blocks that are missing or damaged, by their running numbers
    pw_u64_t lostTicks = 0;  ///< time between intact readings that the lost blocks of samples covered
    bool isClosed = true; ///< false: the file ends without its end block, so its last second may be missing
    bool isWhole() const { return stretches.empty() && lostBlocks == 0 && isClosed; }
};

} // namespace pwr::saved
