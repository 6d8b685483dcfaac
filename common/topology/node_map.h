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
/// Look-ups and iteration are for settled maps; findOrInsert() works at any time.
/// Owns no nodes. An entry without node is allowed and counts as absent.
class KRCOMMON_API NodeMap {
public:
    struct Entry {
        pw_u64_t key;
        TNode* node;
    };

    /// The node at the key; a new entry has none. Valid until the next call.
    TNode*& findOrInsert(pw_u64_t key);

    /// Puts the entries back into key order.
    void settle();

    /// Null when the key has no entry or the entry no node.
    TNode* find(pw_u64_t key) const;

    /// Number of entries with a node.
    std::size_t countNodes() const;

    std::vector<Entry>::const_iterator begin() const { return m_entries.begin(); }
    std::vector<Entry>::const_iterator end() const { return m_entries.end(); }

private:
    std::size_t slotOf_i(pw_u64_t key) const;
    void index_i(std::size_t slots);

    std::vector<Entry> m_entries;
    std::vector<pw_u32_t> m_slots; ///< position + 1 of an entry; 0 is free; empty while settled
};

} // namespace pwr
