#pragma once

#include <cstdint>

#include "common/metrics/metric_declaration.h"
#include "common/values/data.h"

namespace pwr {

/// The value that 64 bits of a reading stand for: raw x SCALE + OFFSET, in the declared type. Whole
/// numbers are computed as such, and end at the limits of their type instead of wrapping.
inline Data valueOf(std::uint64_t bits, const MetricDeclaration& metric);

/// The same for values that are not simply the bits.
Data computedValue(std::uint64_t bits, const MetricDeclaration& metric);

/// The same as a real number, whatever the declared type.
double realValueOf(std::uint64_t bits, const MetricDeclaration& metric);

// Inlined, because most values of most collections are just the bits, and making one is a few stores.
inline Data valueOf(std::uint64_t bits, const MetricDeclaration& metric) {
    return metric.isRaw ? Data(bits) : computedValue(bits, metric);
}

} // namespace pwr
