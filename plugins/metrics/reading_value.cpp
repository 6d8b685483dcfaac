#include "plugins/metrics/reading_value.h"

#include <bit>
#include <cmath>
#include <limits>

namespace pwr {

namespace {

// Results below this are exact in 64 bits, whatever the order of the operations.
constexpr double SAFE_WHOLE = 4611686018427387904.0; // 2^62

double realOf(std::uint64_t bits, DataType type) {
    switch (type) {
    case DataType::INT: return static_cast<double>(std::bit_cast<std::int64_t>(bits));
    case DataType::REAL: return std::bit_cast<double>(bits);
    default: return static_cast<double>(bits);
    }
}

template <class Whole> Whole saturate(double value) {
    if (std::isnan(value)) {
        return 0;
    }
    const double rounded = std::nearbyint(value);
    if (rounded <= static_cast<double>(std::numeric_limits<Whole>::min())) {
        return std::numeric_limits<Whole>::min();
    }
    if (rounded >= static_cast<double>(std::numeric_limits<Whole>::max())) {
        return std::numeric_limits<Whole>::max();
    }
    return static_cast<Whole>(rounded);
}

} // namespace

double realValueOf(std::uint64_t bits, const MetricDeclaration& metric) {
    return realOf(bits, metric.rawType) * metric.scale.value + metric.offset.value;
}

Data computedValue(std::uint64_t bits, const MetricDeclaration& metric) {
    const double real = realValueOf(bits, metric);
    if (metric.valueType == DataType::REAL) {
        return Data(real);
    }
    const bool isWhole = metric.rawType != DataType::REAL && metric.scale.isWhole && metric.offset.isWhole;
    if (isWhole && std::fabs(real) < SAFE_WHOLE) {
        // Unsigned arithmetic gives the two's complement of the true result, which fits.
        const std::uint64_t exact = bits * static_cast<std::uint64_t>(metric.scale.whole) +
                                    static_cast<std::uint64_t>(metric.offset.whole);
        const auto result = std::bit_cast<std::int64_t>(exact);
        if (metric.valueType == DataType::INT) {
            return Data(result);
        }
        return Data(result < 0 ? std::uint64_t{0} : exact);
    }
    return metric.valueType == DataType::INT ? Data(saturate<std::int64_t>(real))
                                             : Data(saturate<std::uint64_t>(real));
}

} // namespace pwr
