#pragma once

#include "common/plugin/collection_data.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace tarnwell {

/// What one round of reads brought, handed between threads as a whole. Its records are used again and again, so that a
/// round costs no allocation once their buffers are large enough.
struct ReadingBatch {
    std::uint64_t begin = 0; ///< tick at which its reads began
    std::vector<std::size_t>
        failed; ///< messages that could not be carried out, by their places in the reader

    void clear() {
        m_size = 0;
        failed.clear();
    }
    /// An empty record behind the others.
    CollectionData& add() {
        if (m_size == m_records.size()) {
            m_records.emplace_back();
        }
        CollectionData& record = m_records[m_size++];
        record.clear();
        return record;
    }
    /// Takes the last record back: nothing could be read.
    void dropLast() { --m_size; }
    std::span<const CollectionData> records() const { return {m_records.data(), m_size}; }
    std::span<CollectionData> records() { return {m_records.data(), m_size}; }
    /// For whoever appends to a plain vector of records, behind those that are there.
    std::vector<CollectionData>& open() {
        m_records.resize(m_size);
        return m_records;
    }
    void close() { m_size = m_records.size(); }
    std::size_t size() const { return m_size; }

private:
    std::vector<CollectionData> m_records;
    std::size_t m_size = 0;
};

} // namespace tarnwell
