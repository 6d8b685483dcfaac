#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace pwr {

/// Finds dense numbers by a hash: an open table of numbers that keeps neither keys nor hashes, so that it costs
/// 8 to 16 bytes an entry. The caller, who has the keys, compares.
class FlatIndex {
public:
    static constexpr std::uint32_t NONE = 0xFFFFFFFF;

    /// Spreads a key over all bits: addresses and consecutive ids differ in few of them, and a table of a power
    /// of two would put them into few places.
    static std::uint64_t mix(std::uint64_t key) {
        key ^= key >> 32;
        key *= 0x9E3779B97F4A7C15U;
        return key ^ (key >> 29);
    }

    /// The number for which isEqual(number) holds, NONE when there is none.
    template <class IsEqual> std::uint32_t find(std::uint64_t hash, IsEqual isEqual) const {
        if (m_slots.empty()) {
            return NONE;
        }
        const std::size_t mask = m_slots.size() - 1;
        for (std::size_t slot = hash & mask;; slot = (slot + 1) & mask) {
            const std::uint32_t number = m_slots[slot];
            if (number == NONE || isEqual(number)) {
                return number;
            }
        }
    }

    /// Enters the next number, which is the count of those entered before; hashOf(number) gives the hash of any.
    template <class HashOf> void append(HashOf hashOf) {
        if (2 * (m_count + std::size_t{1}) > m_slots.size()) {
            m_slots.assign(m_slots.empty() ? 16 : 2 * m_slots.size(), NONE);
            for (std::uint32_t number = 0; number < m_count; ++number) {
                place_i(hashOf(number), number);
            }
        }
        place_i(hashOf(m_count), m_count);
        ++m_count;
    }

private:
    void place_i(std::uint64_t hash, std::uint32_t number) {
        const std::size_t mask = m_slots.size() - 1;
        std::size_t slot = hash & mask;
        while (m_slots[slot] != NONE) {
            slot = (slot + 1) & mask;
        }
        m_slots[slot] = number;
    }

    std::vector<std::uint32_t> m_slots; // a power of two, at most half full
    std::uint32_t m_count = 0;
};

} // namespace pwr
