#pragma once

#include "common/saved/block_header.h"
#include "common/saved/byte_source.h"
#include "common/saved/compression.h"
#include "common/saved/damage_log.h"

#include <optional>
#include <string>
#include <vector>

namespace pwr::saved {

/// A block whose header is sound.
struct Block {
    BlockHeader header;
    pw_u64_t offset = 0;
    pw_u32_t lostBefore = 0;  ///< how many sequences are missing before this block
    bool isUsable = false;    ///< the payload is sound, and unpacked
    std::vector<char> stored; ///< as it stands in the file
    std::vector<char> unpacked;

    const std::vector<char>& payload() const { return header.isCompressed() ? unpacked : stored; }
    pw_u64_t end() const { return offset + c_blockHeaderSize + header.length; }
};

/// Finds the blocks of a file one after the other. A payload's damage costs that block only: its header tells where
/// the next one begins. Behind a damaged header the next mark is looked for. Every byte is looked at a bounded number
/// of times, whatever the file holds.
class BlockReader {
public:
    BlockReader(ByteSource& source, DamageLog& damage);

    /// Blocks of other tags are not taken for blocks of this file. Without: that of the first block.
    void setTag(pw_u16_t tag) { m_tag = tag; }

    /// The next block, usable or not; false at the end of the file. Damage and lost blocks are noted.
    bool next(Block& block);
    /// From the begin again.
    void restart();

    /// False when no sound header stands there.
    bool headerAt(pw_u64_t offset, BlockHeader& header);
    /// A certain block: false, and nothing is noted, when its header is not sound.
    bool readAt(pw_u64_t offset, Block& block, std::string& reason);
    /// The first sound header from an offset on, before `end`.
    std::optional<pw_u64_t> find(pw_u64_t from, pw_u64_t end);

    std::uint64_t bytesRead() const { return m_bytesRead; }
    std::size_t fetch(pw_u64_t offset, std::span<char> to);

private:
    bool isOurs_i(const BlockHeaderBytes& bytes, BlockHeader& header);
    bool findNext_i(Block& block, pw_u64_t size);
    bool readPayload_i(Block& block, std::string& reason);
    pw_u64_t skipDamaged_i(const Block& block, pw_u64_t size);

    ByteSource& m_source;
    DamageLog& m_damage;
    Compression m_compression;
    std::optional<pw_u16_t> m_tag;
    pw_u64_t m_next = c_fileHeaderSize;
    pw_u64_t m_nextSequence = 0; ///< one more than the last one seen
    pw_u64_t m_rescanned = 0;
    std::uint64_t m_bytesRead = 0;
    std::vector<char> m_window;
};

} // namespace pwr::saved
