#include "common/topology/node_map.h"

#include "common/topology/radix_sort.h"

#include <algorithm>

namespace pwr {

namespace {

/// Spreads the ids of a path, which differ in few and always the same bits, over the whole number.
std::size_t mixed(pw_u64_t key) {
    key = (key ^ (key >> 32)) * 0x9E3779B97F4A7C15ULL;
    return static_cast<std::size_t>(key ^ (key >> 29));
}

bool isBelow(const NodeMap::Entry& entry, pw_u64_t key) {
    return entry.key < key;
}

} // namespace

TNode*& NodeMap::findOrInsert(pw_u64_t key) {
    if (m_slots.empty()) {
        if (m_entries.empty() || m_entries.back().key < key) {
            return m_entries.emplace_back(Entry{key, nullptr}).node;
        }
        if (m_entries.back().key == key) {
            return m_entries.back().node;
        }
        makeIndex_i();
    } else if (m_slots.size() < 2 * (m_entries.size() + 1)) {
        makeIndex_i();
    }
    pw_u32_t& slot = slotOf_i(key);
    if (slot != 0) {
        return m_entries[slot - 1].node;
    }
    m_entries.push_back(Entry{key, nullptr});
    slot = static_cast<pw_u32_t>(m_entries.size());
    return m_entries.back().node;
}

void NodeMap::reserve(std::size_t entries) {
    m_entries.reserve(entries);
}

void NodeMap::settle() {
    if (m_slots.empty()) {
        return;
    }
    std::vector<pw_u32_t>().swap(m_slots);
    radixSort(m_entries);
}

void NodeMap::merge(const std::vector<Entry>& entries) {
    const auto middle = static_cast<std::ptrdiff_t>(m_entries.size());
    m_entries.insert(m_entries.end(), entries.begin(), entries.end());
    std::inplace_merge(m_entries.begin(), m_entries.begin() + middle, m_entries.end(),
                       [](const Entry& left, const Entry& right) { return left.key < right.key; });
}

void NodeMap::insert(pw_u64_t key, TNode& node) {
    const auto place = std::lower_bound(m_entries.begin(), m_entries.end(), key, isBelow);
    if (place == m_entries.end() || place->key != key) {
        m_entries.insert(place, Entry{key, &node});
    }
}

TNode* NodeMap::find(pw_u64_t key) const {
    const auto place = std::lower_bound(m_entries.begin(), m_entries.end(), key, isBelow);
    return place == m_entries.end() || place->key != key ? nullptr : place->node;
}

/// The slot that holds the key's entry, or the free one where it belongs.
pw_u32_t& NodeMap::slotOf_i(pw_u64_t key) {
    const std::size_t mask = m_slots.size() - 1;
    std::size_t slot = mixed(key) & mask;
    while (m_slots[slot] != 0 && m_entries[m_slots[slot] - 1].key != key) {
        slot = (slot + 1) & mask;
    }
    return m_slots[slot];
}

/// Makes the index anew, for all entries that have room or for twice as many as there are; the number
/// of slots is a power of two.
void NodeMap::makeIndex_i() {
    std::size_t slots = 16;
    while (slots < 2 * std::max(m_entries.capacity(), 2 * (m_entries.size() + 1))) {
        slots *= 2;
    }
    m_slots.assign(slots, 0);
    for (std::size_t i = 0; i < m_entries.size(); ++i) {
        slotOf_i(m_entries[i].key) = static_cast<pw_u32_t>(i + 1);
    }
}

} // namespace pwr
