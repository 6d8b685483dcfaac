#pragma once

#include <algorithm>
#include <cstdint>

namespace pwr {

/// Follows one counter of a declared width from reading to reading, and tells a wrap from a reset.
///
/// A decrease is believed to be a wrap when the way through the counter's end is short: at most 2 to the
/// power of three quarters of the width (2^24 of 32 bits, 2^48 of 64), or at most half of the range and
/// not more than 16 times as fast as the counter was ever seen to go. Any other decrease is a reset: what
/// was counted since is not known, so there is no difference. A reading beyond the declared width, and an
/// increase of 2^62 or more, are no counts.
class CounterDifference {
public:
    enum class Result : std::uint8_t { FIRST, COUNTED, WRAPPED, RESET };

    explicit CounterDifference(unsigned width) : m_width(width) {}

    /// Takes a reading; the difference to the last one is in `difference` for COUNTED and WRAPPED.
    Result next(std::uint64_t value, std::uint64_t tick, std::uint64_t& difference) {
        const std::uint64_t last = m_value;
        const std::uint64_t elapsed = tick > m_tick ? tick - m_tick : 0;
        const bool isFirst = !m_isKnown;
        if (value > end_i()) {
            forget();
            return Result::RESET;
        }
        m_value = value;
        m_tick = tick;
        m_isKnown = true;
        if (isFirst) {
            return Result::FIRST;
        }
        difference = (value - last) & end_i();
        const bool isDecrease = value < last;
        if (isDecrease ? !isPlausibleWrap_i(difference, elapsed) : difference >= MAX_INCREASE) {
            m_fastest = 0.0;
            return Result::RESET;
        }
        if (elapsed > 0) {
            m_fastest = std::max(m_fastest, static_cast<double>(difference) / static_cast<double>(elapsed));
        }
        return isDecrease ? Result::WRAPPED : Result::COUNTED;
    }

    /// The next reading is a first one: there were readings in between that are not known.
    void forget() { m_isKnown = false; }
    bool isKnown() const { return m_isKnown; }
    std::uint64_t lastTick() const { return m_tick; }
    std::uint64_t lastValue() const { return m_value; }

private:
    static constexpr std::uint64_t MAX_INCREASE = std::uint64_t{1} << 62U;
    static constexpr double MAX_SPEED_UP = 16.0;

    std::uint64_t end_i() const {
        return m_width >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << m_width) - 1;
    }

    bool isPlausibleWrap_i(std::uint64_t difference, std::uint64_t elapsed) const {
        if (difference <= std::uint64_t{1} << (m_width * 3 / 4)) {
            return true;
        }
        return difference <= end_i() / 2 &&
               static_cast<double>(difference) <= m_fastest * MAX_SPEED_UP * static_cast<double>(elapsed);
    }

    unsigned m_width;
    std::uint64_t m_value = 0;
    std::uint64_t m_tick = 0;
    double m_fastest = 0.0; // counts per tick
    bool m_isKnown = false;
};

} // namespace pwr
