#pragma once

#include <algorithm>
#include <limits>

#include "common/plugin/collection_data.h"
#include "common/tw_clock.h"

namespace collectors {

/// Reads, and notes in the record when that was. The middle of the reading is off by at most half of its span,
/// whichever value is meant.
template <class Read> void stampReading(CollectionData& out, const Read& read) {
    const pw_u64_t begin = pwr::getTWATimestamp();
    read();
    const pw_u64_t end = pwr::getTWATimestamp();
    const pw_u64_t span = end > begin ? end - begin : 0;
    out.header().timestamp = begin + span / 2;
    out.header().read_span =
        static_cast<pw_u32_t>(std::min<pw_u64_t>(span, std::numeric_limits<pw_u32_t>::max()));
}

} // namespace collectors
