#pragma once

#include "common/driver_interface.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>

namespace pwr {

/// Drops the digits of a reading's times that mean nothing. The span is rounded to three significant bits, since it
/// only tells how long the reading took. The timestamp, the middle of the span, is known to half a span: it is rounded
/// by at most a 32nd of one, so it stays inside, and readings that did not overlap keep their order. Readings without
/// a span keep their tick. Hosts do this before anything sees a reading; it makes saved collections a third smaller.
inline void dropMeaninglessDigits(tw_driver_msg& header) {
    constexpr int c_spanBits = 3;
    constexpr int c_tickBits = 5;
    const auto roundTo = [](std::uint64_t value, int shift) {
        const std::uint64_t half = (std::uint64_t{1} << shift) >> 1;
        return ((value + half) >> shift) << shift;
    };
    const std::uint64_t span = roundTo(
        header.read_span, std::max(0, static_cast<int>(std::bit_width(header.read_span)) - c_spanBits));
    header.read_span =
        static_cast<pw_u32_t>(std::min<std::uint64_t>(span, std::numeric_limits<pw_u32_t>::max()));
    const int tickShift = std::max(0, static_cast<int>(std::bit_width(header.read_span)) - c_tickBits);
    header.timestamp = roundTo(header.timestamp, tickShift);
}

} // namespace pwr
