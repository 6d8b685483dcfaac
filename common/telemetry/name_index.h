#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace pwr {

/// Finds small values by (owner, name), where the owner tells names of different scopes apart. Names are kept in
/// one text (of less than 4 GB), so that filling costs no allocation a name. All are added, then sealed: placing them
/// by hash in one go takes half the time of placing each as it comes. The first value of a name counts.
template <class Value> class NameIndex {
public:
    /// Makes room for about so many names.
    void reserve(std::size_t count) { m_entries.reserve(count); }

    void add(std::uint32_t owner, std::string_view name, const Value& value) {
        m_entries.push_back({hash_i(owner, name), static_cast<std::uint32_t>(m_names.size()),
                             static_cast<std::uint32_t>(name.size()), owner, value});
        m_names.append(name);
    }

    /// Lets find() see what was added.
    void seal() {
        std::size_t size = FIRST_SLOTS;
        while (size < 2 * m_entries.size()) {
            size *= 2;
        }
        m_slots.assign(size, 0);
        for (std::size_t i = 0; i < m_entries.size(); ++i) {
            const Entry& entry = m_entries[i];
            std::uint32_t& slot = m_slots[place_i(entry.hash, entry.owner, nameOf_i(entry))];
            slot = slot == 0 ? static_cast<std::uint32_t>(i + 1) : slot;
        }
    }

    /// Null when there is none; valid until the next add().
    const Value* find(std::uint32_t owner, std::string_view name) const {
        if (m_slots.empty()) {
            return nullptr;
        }
        const std::uint32_t slot = m_slots[place_i(hash_i(owner, name), owner, name)];
        return slot == 0 ? nullptr : &m_entries[slot - 1].value;
    }

    std::size_t size() const { return m_entries.size(); }

private:
    struct Entry {
        std::uint32_t hash;
        std::uint32_t nameOffset;
        std::uint32_t nameSize;
        std::uint32_t owner;
        Value value;
    };
    static constexpr std::size_t FIRST_SLOTS = 64;

    static std::uint32_t hash_i(std::uint32_t owner, std::string_view name) {
        const std::uint64_t bits = std::hash<std::string_view>()(name) + owner * 0x9E3779B97F4A7C15U;
        return static_cast<std::uint32_t>((bits ^ bits >> 29) * 0xD6E8FEB86659FD93U >> 32);
    }

    /// The slot that holds the name, or the free one where it belongs.
    std::size_t place_i(std::uint32_t hash, std::uint32_t owner, std::string_view name) const {
        const std::size_t mask = m_slots.size() - 1;
        std::size_t at = hash & mask;
        while (m_slots[at] != 0 && !isEntry_i(m_entries[m_slots[at] - 1], hash, owner, name)) {
            at = (at + 1) & mask;
        }
        return at;
    }
    bool isEntry_i(const Entry& entry, std::uint32_t hash, std::uint32_t owner, std::string_view name) const {
        return entry.hash == hash && entry.owner == owner && nameOf_i(entry) == name;
    }
    std::string_view nameOf_i(const Entry& entry) const {
        return std::string_view(m_names).substr(entry.nameOffset, entry.nameSize);
    }

    std::string m_names;
    std::vector<Entry> m_entries;
    std::vector<std::uint32_t> m_slots; ///< entry number + 1, 0 for a free slot; a power of two of them
};

} // namespace pwr
