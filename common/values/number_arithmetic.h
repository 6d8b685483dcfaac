#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

// Private to the library: the arithmetic of values, defined for every operand.

namespace pwr {

/// Wraps at the ends of the type; done unsigned, because signed overflow is undefined.
template <class Int> constexpr Int wrappingSum(Int left, Int right) {
    using Bits = std::make_unsigned_t<Int>;
    return static_cast<Int>(static_cast<Bits>(left) + static_cast<Bits>(right));
}

/// round(value * factor), half away from zero. A cast of a double beyond the type is undefined, so
/// the ends are compared first; the upper one is a power of two and exact, unlike the type's maximum.
template <class Int> Int scaledInteger(Int value, double factor) {
    constexpr double beyond = 2.0 * static_cast<double>(Int{1} << (std::numeric_limits<Int>::digits - 1));
    const double product = std::round(static_cast<double>(value) * factor);
    if (std::isnan(product)) return 0;
    if (product >= beyond) return std::numeric_limits<Int>::max();
    if (product <= static_cast<double>(std::numeric_limits<Int>::min()))
        return std::numeric_limits<Int>::min();
    return static_cast<Int>(product);
}

/// Where running extremes start. The maximum of reals starts at the smallest positive normal double.
template <class Number> struct Seeds {
    static constexpr Number minimum = std::numeric_limits<Number>::max();
    static constexpr Number maximum = std::numeric_limits<Number>::min();
};

} // namespace pwr
