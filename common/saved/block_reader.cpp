#include "common/saved/block_reader.h"

#include "common/saved/crc32c.h"

#include <algorithm>
#include <cstring>

namespace pwr::saved {

namespace {

constexpr std::size_t c_windowSize = std::size_t{64} << 10;

} // namespace

BlockReader::BlockReader(ByteSource& source, DamageLog& damage) : m_source(source), m_damage(damage) {}

void BlockReader::restart() {
    m_next = c_fileHeaderSize;
    m_nextSequence = 0;
    m_rescanned = 0;
}

std::size_t BlockReader::fetch(pw_u64_t offset, std::span<char> to) {
    const std::size_t got = m_source.readAt(offset, to);
    m_bytesRead += got;
    return got;
}

bool BlockReader::isOurs_i(const BlockHeaderBytes& bytes, BlockHeader& header) {
    return decode(bytes, header) && (!m_tag || header.tag == *m_tag);
}

bool BlockReader::headerAt(pw_u64_t offset, BlockHeader& header) {
    BlockHeaderBytes bytes{};
    return fetch(offset, bytes) == bytes.size() && isOurs_i(bytes, header);
}

std::optional<pw_u64_t> BlockReader::find(pw_u64_t from, pw_u64_t end) {
    m_window.resize(c_windowSize);
    BlockHeaderBytes bytes{};
    BlockHeader header;
    while (from + c_blockHeaderSize <= end) {
        const std::size_t got =
            fetch(from, std::span(m_window).first(std::min<pw_u64_t>(m_window.size(), end - from)));
        if (got < c_blockHeaderSize) {
            break;
        }
        const char* const begin = m_window.data();
        const char* const last = begin + (got - c_blockHeaderSize); // where a whole header may begin
        for (const char* at = begin; at <= last; ++at) {
            at = static_cast<const char*>(
                std::memchr(at, c_blockMark[0], static_cast<std::size_t>(last - at) + 1));
            if (at == nullptr) {
                break;
            }
            if (std::memcmp(at, c_blockMark.data(), c_blockMark.size()) != 0) {
                continue;
            }
            std::memcpy(bytes.data(), at, bytes.size());
            if (isOurs_i(bytes, header)) {
                return from + static_cast<pw_u64_t>(at - begin);
            }
        }
        from += static_cast<pw_u64_t>(last - begin) + 1;
    }
    return std::nullopt;
}

/// The next sound header in its turn.
bool BlockReader::findNext_i(Block& block, pw_u64_t size) {
    while (m_next < size) {
        block.offset = m_next;
        if (!headerAt(m_next, block.header)) {
            const bool isTorn = size - m_next < c_blockHeaderSize;
            const pw_u64_t found = find(m_next + 1, size).value_or(size);
            m_damage.add(m_next, found - m_next, "unknown", isTorn ? "cut short" : "no sound block header");
            m_next = found;
            continue;
        }
        m_tag = block.header.tag;
        if (block.header.sequence >= m_nextSequence) {
            return true;
        }
        const pw_u64_t end = std::min(block.end(), size);
        m_damage.add(m_next, end - m_next, nameOf(block.header.kind), "running number falls or repeats");
        m_next = end;
    }
    return false;
}

bool BlockReader::readPayload_i(Block& block, std::string& reason) {
    block.stored.resize(block.header.length);
    if (fetch(block.offset + c_blockHeaderSize, block.stored) != block.stored.size()) {
        reason = "cut short";
        return false;
    }
    if (!isChecksum(block.header.payloadChecksum, crc32c(block.stored.data(), block.stored.size()))) {
        reason = "checksum differs";
        return false;
    }
    return !block.header.isCompressed() || m_compression.unpack(block.stored, block.unpacked, reason) == 0;
}

bool BlockReader::readAt(pw_u64_t offset, Block& block, std::string& reason) {
    block.offset = offset;
    block.lostBefore = 0;
    block.isUsable = false;
    if (!headerAt(offset, block.header)) {
        reason = "no sound block header";
        return false;
    }
    if (block.end() > m_source.size()) {
        reason = "cut short";
        return true;
    }
    block.isUsable = readPayload_i(block, reason);
    return true;
}

/// Where to go on behind a damaged payload. When no block begins where it should end, bytes have come or gone, and the
/// next block may begin within: it is looked for, as long as that does not look at more bytes than the file has.
pw_u64_t BlockReader::skipDamaged_i(const Block& block, pw_u64_t size) {
    const pw_u64_t end = std::min(block.end(), size);
    BlockHeader behind;
    if (block.end() == size || (block.end() < size && headerAt(end, behind))) {
        return end;
    }
    const pw_u64_t length = end - block.offset;
    if (m_rescanned + length > size) {
        return end;
    }
    m_rescanned += length;
    return find(block.offset + c_blockHeaderSize, std::min(size, end + c_blockHeaderSize)).value_or(end);
}

bool BlockReader::next(Block& block) {
    const pw_u64_t size = m_source.size();
    block.isUsable = false;
    if (!findNext_i(block, size)) {
        return false;
    }
    block.lostBefore = static_cast<pw_u32_t>(block.header.sequence - m_nextSequence);
    m_nextSequence = pw_u64_t{block.header.sequence} + 1;

    std::string reason = "cut short";
    block.isUsable = block.end() <= size && readPayload_i(block, reason);
    m_next = block.isUsable ? block.end() : skipDamaged_i(block, size);
    if (!block.isUsable) {
        m_damage.add(block.offset, m_next - block.offset, nameOf(block.header.kind), reason);
    }
    m_damage.report().lostBlocks += block.lostBefore + (block.isUsable ? 0U : 1U);
    return true;
}

} // namespace pwr::saved
