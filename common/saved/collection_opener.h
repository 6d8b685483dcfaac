#pragma once

#include "common/saved/block_reader.h"
#include "common/saved/byte_source.h"
#include "common/saved/catalog.h"
#include "common/saved/index.h"

#include <memory>
#include <optional>
#include <string>

namespace pwr::saved {

/// The index by the trailer in the end of the file; none when there is none or it is damaged. `block` holds its block.
std::optional<Index> readIndex(BlockReader& blocks, pw_u64_t fileSize, Block& block);

/// Opens a file and gathers what it says besides its readings: by the index, in a few reads, or by one pass over all
/// blocks.
class CollectionOpener {
public:
    CollectionOpener(std::unique_ptr<ByteSource> source, std::string name);
    CollectionOpener(const CollectionOpener&) = delete;
    CollectionOpener& operator=(const CollectionOpener&) = delete;

    /// 0; or 1 and the reason, name included, in `error`.
    int open(std::string& error);

    const FileHeader& header() const { return m_header; } ///< zeros when it is damaged
    /// Null when there is none, or it is damaged.
    const Index* index() const { return m_index ? &*m_index : nullptr; }
    pw_u64_t indexOffset() const { return m_indexOffset; }
    /// What the end block says, else the index; else what one pass counted.
    FileTotals totals() const;
    pw_u64_t size() { return m_source->size(); }

    /// The pass over all blocks met this block.
    void sawIndex(const Block& block);
    bool hasSeenIndex() const { return m_hasSeenIndex; }

    BlockReader& blocks() { return m_blocks; }
    Catalog& catalog() { return m_catalog; }
    DamageLog& damage() { return m_damage; }

private:
    int readHeader_i(std::string& error);
    bool hasBlocks_i();
    void readListed_i(const IndexEntry& entry);
    void readByIndex_i();
    void readAll_i();

    std::unique_ptr<ByteSource> m_source;
    std::string m_name;
    DamageLog m_damage;
    BlockReader m_blocks;
    Catalog m_catalog;
    FileHeader m_header;
    std::optional<Index> m_index;
    pw_u64_t m_indexOffset = 0;
    bool m_hasSeenIndex = false;
    FileTotals m_passed;
    Block m_block;
};

} // namespace pwr::saved
