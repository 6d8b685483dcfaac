#include "common/saved/collection_opener.h"

#include "common/metadata/metadata.h"
#include "common/metadata/system_metadata.h"

#include <algorithm>
#include <cstring>

namespace pwr::saved {

namespace {

/// Behind a damaged header the first block must begin within this, or the file is taken for another kind of file.
constexpr pw_u64_t c_searchedForBlocks = pw_u64_t{32} << 20;

} // namespace

std::optional<Index> readIndex(BlockReader& blocks, pw_u64_t fileSize, Block& block) {
    std::array<char, c_trailerSize> bytes{};
    Trailer trailer;
    if (fileSize < c_fileHeaderSize + c_blockHeaderSize + c_trailerSize ||
        blocks.fetch(fileSize - bytes.size(), bytes) != bytes.size() || !decode(bytes, trailer) ||
        trailer.fileSize != fileSize || trailer.indexOffset > fileSize) {
        return std::nullopt;
    }
    std::string reason;
    Index index;
    if (!blocks.readAt(trailer.indexOffset, block, reason) || !block.isUsable ||
        block.header.kind != BlockKind::INDEX || block.end() != fileSize || block.header.isCompressed() ||
        !decode(block.payload(), index)) {
        return std::nullopt;
    }
    return index;
}

CollectionOpener::CollectionOpener(std::unique_ptr<ByteSource> source, std::string name)
    : m_source(std::move(source)), m_name(std::move(name)), m_blocks(*m_source, m_damage) {}

int CollectionOpener::open(std::string& error) {
    if (readHeader_i(error) != 0) {
        return 1;
    }
    m_index = readIndex(m_blocks, m_source->size(), m_block);
    if (m_index) {
        m_blocks.setTag(m_block.header.tag);
        m_indexOffset = m_block.offset;
        readByIndex_i();
    } else {
        readAll_i();
    }
    m_catalog.make(m_damage);
    return 0;
}

int CollectionOpener::readHeader_i(std::string& error) {
    FileHeaderBytes bytes{};
    const std::size_t got = m_blocks.fetch(0, bytes);
    if (got == bytes.size() && decode(bytes, m_header)) {
        if (m_header.major > c_formatMajor) {
            error = m_name + ": written by a newer version (format " + std::to_string(m_header.major) + "." +
                    std::to_string(m_header.minor) + "); this program reads up to " +
                    std::to_string(c_formatMajor) + ".x";
            return 1;
        }
        m_blocks.setTag(m_header.tag());
        return 0;
    }
    m_header = FileHeader{0, 0, {}};
    if (got == 0) {
        error = m_name + ": the file is empty";
        return 1;
    }
    if (!hasBlocks_i()) {
        const bool begins = got >= c_fileMagic.size() &&
                            std::memcmp(bytes.data(), c_fileMagic.data(), c_fileMagic.size()) == 0;
        error = m_name + (begins ? ": a saved collection whose begin is damaged and that holds nothing else"
                                 : ": not a saved collection");
        return 1;
    }
    m_damage.add(0, c_fileHeaderSize, "file header", "checksum differs");
    return 0;
}

bool CollectionOpener::hasBlocks_i() {
    return m_blocks.find(c_fileHeaderSize, std::min(m_source->size(), c_searchedForBlocks)).has_value();
}

/// What the index lists must be there. What is damaged is told; its copy is listed too.
void CollectionOpener::readListed_i(const IndexEntry& entry) {
    std::string reason;
    const bool isFound = m_blocks.readAt(entry.offset, m_block, reason);
    if (isFound && m_block.isUsable &&
        (m_block.header.kind != entry.kind || m_block.header.sequence != entry.sequence)) {
        m_block.isUsable = false;
        reason = "not what the index says";
    }
    if (!isFound || !m_block.isUsable || !m_catalog.add(m_block)) {
        const pw_u64_t length = isFound ? m_block.end() - entry.offset : 0;
        m_damage.add(entry.offset, length, nameOf(entry.kind),
                     reason.empty() ? "not what its kind demands" : reason);
        ++m_damage.report().lostBlocks;
    }
}

void CollectionOpener::readByIndex_i() {
    // The last record is enough, and the only one that is made: each would make its own topology.
    const std::vector<IndexEntry>& entries = m_index->entries;
    for (std::size_t i = entries.size(); i-- > 0;) {
        const IndexEntry& entry = entries[i];
        if (entry.kind == BlockKind::SYSTEM && entry.offset != 0 && !m_catalog.hasSystem()) {
            readListed_i(entry);
        }
    }
    for (const IndexEntry& entry : entries) {
        const bool isCopy = (entry.flags & block_flag::COPY) != 0;
        if (entry.kind != BlockKind::SYSTEM && entry.offset != 0 &&
            (!isCopy || m_catalog.lacks(entry.kind, entry.ordinal))) {
            readListed_i(entry);
        }
    }
}

void CollectionOpener::readAll_i() {
    while (m_blocks.next(m_block)) {
        ++m_passed.blocks;
        if (!m_block.isUsable) {
            continue;
        }
        if (m_block.header.kind == BlockKind::INDEX) {
            sawIndex(m_block);
        } else if (!m_catalog.add(m_block)) {
            m_damage.add(m_block.offset, m_block.end() - m_block.offset, nameOf(m_block.header.kind),
                         "not what its kind demands");
        }
        m_passed.lastTick = std::max(m_passed.lastTick, m_block.header.firstTick);
    }
    m_damage.report().isClosed = m_catalog.end.has_value() || m_hasSeenIndex;
}

void CollectionOpener::sawIndex(const Block& block) {
    Index index;
    if (block.end() == m_source->size() && decode(block.payload(), index)) {
        m_hasSeenIndex = true;
    } else {
        m_damage.add(block.offset, block.end() - block.offset, nameOf(BlockKind::INDEX),
                     "not the file's end");
    }
}

FileTotals CollectionOpener::totals() const {
    return m_catalog.end ? *m_catalog.end : m_index ? m_index->totals : m_passed;
}

} // namespace pwr::saved
