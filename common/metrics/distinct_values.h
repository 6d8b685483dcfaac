#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "common/metrics/flat_index.h"

namespace pwr {

/// How often and for how long one row had each of its values, by the value's key. An open table at most three
/// quarters full: 24 bytes a place, so at most 64 a value, and one place to look at for most samples.
class DistinctValues {
public:
    struct Entry {
        std::uint64_t key;
        std::uint64_t samples; // 0: the place is free
        std::uint64_t duration;
    };

    /// The entry of a key, or the free place where it belongs; room must have been made.
    Entry& place(std::uint64_t key) {
        for (std::size_t slot = home_i(key);; slot = (slot + 1) & m_mask) {
            Entry& entry = m_entries[slot];
            if (entry.key == key || entry.samples == 0) {
                return entry;
            }
        }
    }
    /// Makes room for one more key, without which place() must not be called; moves the entries.
    void makeRoom() {
        if (m_entries == nullptr || 4 * (m_used + 1) > 3 * (m_mask + 1)) {
            grow_i();
        }
    }
    /// Enters a key at the free place that place() gave.
    void enter(Entry& free, std::uint64_t key) {
        free.key = key;
        ++m_used;
    }

    [[nodiscard]] const Entry* find(std::uint64_t key) const {
        if (m_entries == nullptr) {
            return nullptr;
        }
        const Entry& entry = const_cast<DistinctValues*>(this)->place(key);
        return entry.samples != 0 ? &entry : nullptr;
    }

    [[nodiscard]] std::uint32_t size() const { return m_used; }
    template <class Visit> void forEach(Visit visit) const {
        for (std::size_t slot = 0; m_entries != nullptr && slot <= m_mask; ++slot) {
            if (m_entries[slot].samples != 0) {
                visit(m_entries[slot]);
            }
        }
    }

private:
    [[nodiscard]] std::size_t home_i(std::uint64_t key) const { return FlatIndex::mix(key) & m_mask; }
    void grow_i();

    std::unique_ptr<Entry[]> m_entries;
    std::uint32_t m_mask = 0;
    std::uint32_t m_used = 0;
};

} // namespace pwr
