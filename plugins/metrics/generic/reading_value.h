#pragma once

#include <cstdint>

#include "common/metrics/metric_declaration.h"
#include "common/values/data.h"

namespace pwr {

/// The value that 64 bits of a reading stand for: raw x SCALE + OFFSET, in the declared type. Whole
/// numbers are computed as such, and end at the limits of their type instead of wrapping.
Data valueOf(std::uint64_t bits, const MetricDeclaration& metric);

} // namespace pwr
