#pragma once

#include "common/pw_types.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>
#include <vector>

namespace pwr {

/// Sorts elements by their member `key`, keeping the order of equals. Long lists are sorted by
/// counting, one byte of the keys after the other, lowest first: time is linear, and bytes that are
/// the same in all keys (most are: ids are small) cost nothing.
template <class Element> void radixSort(std::vector<Element>& elements) {
    constexpr std::size_t c_longList = 64;
    if (elements.size() < c_longList) {
        std::stable_sort(elements.begin(), elements.end(),
                         [](const Element& left, const Element& right) { return left.key < right.key; });
        return;
    }
    pw_u64_t differing = 0;
    for (const Element& element : elements) {
        differing |= element.key ^ elements.front().key;
    }
    const auto byteOf = [](pw_u64_t key, unsigned shift) {
        return static_cast<std::size_t>(key >> shift & 0xFF);
    };
    std::vector<Element> sorted(elements.size());
    for (unsigned shift = 0; shift < 64; shift += 8) {
        if (byteOf(differing, shift) == 0) {
            continue;
        }
        std::array<std::size_t, 256> places{};
        for (const Element& element : elements) {
            ++places[byteOf(element.key, shift)];
        }
        std::size_t before = 0;
        for (std::size_t& place : places) {
            before += std::exchange(place, before);
        }
        for (const Element& element : elements) {
            sorted[places[byteOf(element.key, shift)]++] = element;
        }
        elements.swap(sorted);
    }
}

} // namespace pwr
