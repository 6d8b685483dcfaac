#pragma once

#include "common/export.h"
#include "common/pw_types.h"

#include <string>

namespace pwr {

/// The data format of a telemetry counter: a fixed-point number with x integer bits and y fraction bits, written
/// as "U8.8" (unsigned) or "S7.8" (signed).
struct tw_qformat {
    char sign = 'U';
    pw_u8_t x = 0;
    pw_u8_t y = 0;
};

/// Reads a data format. Anything but 'U' or 'S', a number up to 255, a dot and a number up to 255 is an error, which
/// is logged, and gives U0.0.
KRCOMMON_API tw_qformat retrieveQFormat(const std::string& text);

/// The value of a raw counter in its format: raw / 2^y; a signed one with its sign bit set is the negative of the two's
/// complement of the bits below. The sign bit is bit x + y + 1 (modulo 64), as the hardware has it: one above the
/// number's own bits. Another sign letter is logged as an error and gives the raw value.
KRCOMMON_API double convertToFloatPoint(pw_u64_t raw, const tw_qformat& format);

} // namespace pwr
