#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

// Bits in the order from the lowest of the first byte on, as samples blocks use them (docs/formats/samples-block.md).
// Readers of foreign bytes cannot leave the buffer: behind its end there are zeros, and isOverrun() tells.

namespace pwr::saved {

/// Numbers with a sign as numbers without, small ones staying small: 0, -1, 1, -2 become 0, 1, 2, 3.
constexpr std::uint64_t zigzag(std::uint64_t difference) {
    return (difference << 1) ^ (std::uint64_t{0} - (difference >> 63));
}
constexpr std::uint64_t unzigzag(std::uint64_t coded) {
    return (coded >> 1) ^ (std::uint64_t{0} - (coded & 1));
}

constexpr std::uint64_t lowBits(unsigned count) {
    return count >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << count) - 1;
}

/// Sizes of the codes below.
namespace bit_code {
inline constexpr unsigned c_groupBits = 3;      ///< of a number's group, without the bit that says "more"
inline constexpr unsigned c_wideLengthBits = 6; ///< in front of a wide number
inline constexpr unsigned c_longestRun = 16;    ///< so many zeros announce a wide number
inline constexpr unsigned c_maxShift = 40;      ///< run, its end and the low bits fit one look at the stream
} // namespace bit_code

class BitWriter {
public:
    /// Appends to the bytes, from a new byte on.
    explicit BitWriter(std::vector<char>& bytes) : m_bytes(bytes) {}

    void bits(std::uint64_t value, unsigned count) {
        while (count > 0) {
            const unsigned now = std::min(count, 64 - m_held);
            m_word |= (value & lowBits(now)) << m_held;
            m_held += now;
            count -= now;
            if (m_held == 64) {
                flush_i(8);
            }
            value = now == 64 ? 0 : value >> now;
        }
    }
    void bit(bool value) { bits(value ? 1 : 0, 1); }
    /// Small numbers in four bits, larger ones in groups of three.
    void number(std::uint64_t value) {
        while (value >> bit_code::c_groupBits != 0) {
            bits((value & lowBits(bit_code::c_groupBits)) | 1U << bit_code::c_groupBits,
                 bit_code::c_groupBits + 1);
            value >>= bit_code::c_groupBits;
        }
        bits(value, bit_code::c_groupBits + 1);
    }
    /// Any number: its length, then its bits without the highest.
    void wide(std::uint64_t value) {
        const unsigned length = std::max(1U, static_cast<unsigned>(std::bit_width(value)));
        bits(length - 1, bit_code::c_wideLengthBits);
        bits(value, length == 1 ? 1 : length - 1);
    }
    /// Zeros for what is above the lowest `shift` bits, a one, and these bits. Numbers much larger than usual are wide.
    void rice(std::uint64_t value, unsigned shift) {
        const std::uint64_t run = value >> shift;
        if (run < bit_code::c_longestRun) {
            bits(std::uint64_t{1} << run, static_cast<unsigned>(run) + 1);
            bits(value, shift);
        } else {
            bits(0, bit_code::c_longestRun);
            wide(value);
        }
    }
    /// Fills the last byte up with zeros.
    void finish() { flush_i((m_held + 7) / 8); }

private:
    void flush_i(unsigned count) {
        for (unsigned i = 0; i < count; ++i) {
            m_bytes.push_back(static_cast<char>(m_word >> (8 * i) & 0xFF));
        }
        m_word = 0;
        m_held = 0;
    }

    std::vector<char>& m_bytes;
    std::uint64_t m_word = 0;
    unsigned m_held = 0;
};

constexpr unsigned lengthOfWide(std::uint64_t value) {
    return bit_code::c_wideLengthBits + std::max(1U, static_cast<unsigned>(std::bit_width(value | 2)) - 1);
}
constexpr unsigned lengthOfRice(std::uint64_t value, unsigned shift) {
    const std::uint64_t run = value >> shift;
    return run < bit_code::c_longestRun ? static_cast<unsigned>(run) + 1 + shift
                                        : bit_code::c_longestRun + lengthOfWide(value);
}

class BitReader {
public:
    /// The buffer needs so many zeros behind its content.
    static constexpr std::size_t PADDING = 8;

    BitReader() = default;
    /// Of a padded buffer.
    BitReader(const char* bytes, std::size_t size) : m_bytes(bytes), m_size(size) {}

    bool isOverrun() const { return m_at > m_size * 8; }
    std::size_t bitsLeft() const { return isOverrun() ? 0 : m_size * 8 - m_at; }
    /// Only for loops over counted things: each takes at least so many bits, so more cannot be there.
    bool canHold(std::uint64_t count, unsigned bitsEach) const { return count <= bitsLeft() / bitsEach; }

    std::uint64_t bits(unsigned count) {
        if (count > c_window) {
            const std::uint64_t low = bits(32);
            return low | bits(count - 32) << 32;
        }
        const std::uint64_t value = look_i(count) & lowBits(count);
        take_i(count);
        return value;
    }
    bool bit() { return bits(1) != 0; }
    std::uint64_t number() {
        std::uint64_t value = 0;
        for (unsigned shift = 0; shift < 64; shift += bit_code::c_groupBits) {
            const std::uint64_t group = bits(bit_code::c_groupBits + 1);
            value |= (group & lowBits(bit_code::c_groupBits)) << shift;
            if (group >> bit_code::c_groupBits == 0) {
                break;
            }
        }
        return value;
    }
    std::uint64_t wide() {
        const auto length = static_cast<unsigned>(bits(bit_code::c_wideLengthBits)) + 1;
        return length == 1 ? bits(1) : bits(length - 1) | std::uint64_t{1} << (length - 1);
    }
    std::uint64_t rice(unsigned shift) {
        const std::uint64_t window = look_i(bit_code::c_longestRun + 1 + shift);
        const auto run =
            static_cast<unsigned>(std::countr_zero(window | std::uint64_t{1} << bit_code::c_longestRun));
        if (run == bit_code::c_longestRun) {
            take_i(run);
            return wide();
        }
        take_i(run + 1 + shift);
        return std::uint64_t{run} << shift | (window >> (run + 1) & lowBits(shift));
    }
    /// Past a number of rice().
    void skipRice(unsigned shift) {
        const std::uint64_t window = look_i(bit_code::c_longestRun + 1 + shift);
        const auto run =
            static_cast<unsigned>(std::countr_zero(window | std::uint64_t{1} << bit_code::c_longestRun));
        if (run == bit_code::c_longestRun) {
            rice(shift);
        } else {
            take_i(run + 1 + shift);
        }
    }

private:
    static constexpr unsigned c_window = 57; // bits that are there for certain, from any bit of a byte on

    /// At least so many of the next bits, up to the window. Loading a word waits for the length of the number before;
    /// most numbers are still in the last word.
    std::uint64_t look_i(unsigned count) {
        if (m_held < count) {
            const char* const at = m_bytes + std::min(m_at >> 3, m_size);
            m_word = 0;
            if constexpr (std::endian::native == std::endian::little) {
                std::memcpy(&m_word, at, sizeof m_word);
            } else {
                for (unsigned i = 0; i < sizeof m_word; ++i) {
                    m_word |= static_cast<std::uint64_t>(static_cast<unsigned char>(at[i])) << (8 * i);
                }
            }
            m_word >>= m_at & 7;
            m_held = 64 - static_cast<unsigned>(m_at & 7);
        }
        return m_word;
    }
    void take_i(unsigned count) {
        m_at += count;
        m_word >>= count;
        m_held -= count;
    }

    const char* m_bytes = nullptr;
    std::size_t m_size = 0;
    std::size_t m_at = 0;
    std::uint64_t m_word = 0; // the next bits
    unsigned m_held = 0;      // how many of them are there
};

} // namespace pwr::saved
