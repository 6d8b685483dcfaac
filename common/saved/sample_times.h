#pragma once

#include "common/saved/bit_stream.h"

#include <cstdint>
#include <vector>

namespace pwr::saved {

/// How precise the times of a block are: the fewer bits they need, the shorter they are written. Always exact.
struct TimePrecision {
    unsigned spanBits = 1; ///< significant bits that every span gets by with, 1 to 32
    unsigned tickBits = 0; ///< ticks are multiples of 2^(length of the span - this), 0 to 32

    /// Bits of a tick that are zero beside such a span.
    unsigned tickShift(std::uint32_t span) const {
        const auto length = static_cast<unsigned>(std::bit_width(span));
        return length > tickBits ? length - tickBits : 0;
    }
    /// Spans of this precision, numbered without holes in their order.
    std::uint64_t indexOf(std::uint32_t span) const {
        const auto length = static_cast<unsigned>(std::bit_width(span));
        const unsigned exponent = length > spanBits ? length - spanBits : 0;
        return (std::uint64_t{exponent} << (spanBits - 1)) + (span >> exponent);
    }
    /// The reverse. False when the number is no span's.
    bool spanOf(std::uint64_t index, std::uint32_t& span) const {
        if (index >> spanBits == 0) {
            span = static_cast<std::uint32_t>(index);
            return true;
        }
        const std::uint64_t exponent = (index >> (spanBits - 1)) - 1;
        if (exponent > 32 - spanBits) {
            return false;
        }
        span = static_cast<std::uint32_t>((index - (exponent << (spanBits - 1))) << exponent);
        return true;
    }
};

/// Guesses a reading's tick: the middle of its span, which begins so long after the end of the reading before, of
/// whatever message, as it did the last time. Unsigned on purpose: sums may run over and come back.
class TickGuess {
public:
    void begin(std::uint64_t tick, std::uint32_t span) {
        m_tick = tick;
        m_span = span;
    }
    std::uint64_t withoutGap(std::uint32_t span) const { return m_tick + (m_span >> 1) + (span >> 1); }

    static std::uint64_t rounded(std::uint64_t tick, unsigned shift) {
        return (tick + ((std::uint64_t{1} << shift) >> 1)) >> shift;
    }

private:
    std::uint64_t m_tick = 0;
    std::uint32_t m_span = 0;
};

/// Guesses which part the next reading is of: the one that followed last time, else one that is new, else the first.
class PartGuess {
public:
    explicit PartGuess(std::size_t parts = 0) : m_next(parts, c_none) {}

    std::uint32_t next() const {
        if (m_last != c_none && m_next[m_last] != c_none) {
            return m_next[m_last];
        }
        return m_seen < m_next.size() ? m_seen : 0;
    }
    void learn(std::uint32_t part) {
        if (m_last != c_none) {
            m_next[m_last] = part;
        }
        m_seen += part == m_seen ? 1 : 0;
        m_last = part;
    }

private:
    static constexpr std::uint32_t c_none = UINT32_MAX;
    std::vector<std::uint32_t> m_next;
    std::uint32_t m_last = c_none;
    std::uint32_t m_seen = 0;
};

} // namespace pwr::saved
