#pragma once

#include "common/export.h"
#include "common/pw_types.h"

#include <cstddef>
#include <vector>

namespace pwr {

class TNode;

/// Ordered map from path key to node, made for trees that are built in one go: as long as keys
/// arrive in ascending order it is a plain sorted array; the first key out of order makes a hash
/// index beside the array, and settle() sorts once and drops the index. So a build takes linear
/// time in any order, and a finished map is compact.
/// Look-ups and iteration are for settled maps. Owns no nodes.
class KRCOMMON_API NodeMap {
public:
    struct Entry {
        pw_u64_t key;
        TNode* node;
    };

    /// The place of the node at the key, null in a new entry; valid until the next call. The caller
    /// fills a new place, and settles the map when it has finished.
    TNode*& findOrInsert(pw_u64_t key);

    /// Makes room for so many entries in all.
    void reserve(std::size_t entries);

    /// Puts the entries back into key order.
    void settle();

    /// Adds the node to a settled map unless the key is taken.
    void insert(pw_u64_t key, TNode& node);

    /// Adds entries in key order, none of whose keys is there yet, to a settled map.
    void merge(const std::vector<Entry>& entries);

    /// Null when nothing stands at the key.
    TNode* find(pw_u64_t key) const;

    std::size_t size() const { return m_entries.size(); }
    std::vector<Entry>::const_iterator begin() const { return m_entries.begin(); }
    std::vector<Entry>::const_iterator end() const { return m_entries.end(); }

private:
    pw_u32_t& slotOf_i(pw_u64_t key);
    void makeIndex_i();

    std::vector<Entry> m_entries;
    std::vector<pw_u32_t> m_slots; ///< hash index: position + 1 of an entry, 0 for free; none while settled
};

} // namespace pwr
