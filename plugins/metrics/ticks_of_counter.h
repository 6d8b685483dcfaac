#pragma once

#include <cmath>
#include <cstdint>

#include "common/metrics/metric_declaration.h"

namespace pwr {

/// Turns the counts of a time counter into clock ticks without losing any: fractions of a tick are kept
/// for later, so that the ticks of many steps add up to those of their sum.
class TicksOfCounter {
public:
    /// SCALE says how many microseconds a count is; the clock's frequency is in MHz.
    TicksOfCounter(const DecimalNumber& scale, float clockMHz)
        : m_factor(scale.value * static_cast<double>(clockMHz)),
          m_isWhole(m_factor == std::floor(m_factor) && m_factor >= 0.0 && m_factor < MAX_WHOLE),
          m_whole(m_isWhole ? static_cast<std::uint64_t>(m_factor) : 0) {}

    std::uint64_t next(std::uint64_t counts) {
        if (m_isWhole) {
            return m_whole != 0 && counts > MAX_TICKS / m_whole ? MAX_TICKS : counts * m_whole;
        }
        const double exact = static_cast<double>(counts) * m_factor + m_fraction;
        if (!(exact >= 0.0)) {
            return 0;
        }
        if (exact >= static_cast<double>(MAX_TICKS)) {
            return MAX_TICKS;
        }
        const double whole = std::floor(exact);
        m_fraction = exact - whole;
        return static_cast<std::uint64_t>(whole);
    }

private:
    static constexpr double MAX_WHOLE = 4294967296.0;
    // More than any collection lasts; so small that the sum of all states of an entity does not wrap.
    static constexpr std::uint64_t MAX_TICKS = std::uint64_t{1} << 56U;

    double m_factor;
    double m_fraction = 0.0;
    bool m_isWhole;
    std::uint64_t m_whole;
};

} // namespace pwr
