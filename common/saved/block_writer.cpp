#include "common/saved/block_writer.h"

#include "common/pw_utils.h"
#include "common/saved/crc32c.h"

namespace pwr::saved {

int BlockWriter::fail(const std::string& reason) {
    if (m_error.empty()) {
        m_error = m_path + ": " + reason;
    }
    return 1;
}

int BlockWriter::create(const std::string& path, bool mustBeNew) {
    m_path = path;
    const int failure = m_file.create(path, mustBeNew);
    return failure == 0 ? 0 : fail(pw_strerror(failure));
}

void BlockWriter::start(const FileHeader& header) {
    m_tag = header.tag();
    const FileHeaderBytes bytes = encode(header);
    m_gathered.insert(m_gathered.end(), bytes.begin(), bytes.end());
}

StoredBlock BlockWriter::store(BlockKind kind, pw_u16_t flags, pw_u16_t ordinal,
                               std::span<const char> payload) {
    StoredBlock block;
    block.header.kind = kind;
    block.header.flags = flags;
    block.header.ordinal = ordinal;
    if (m_compression.pack(payload, block.payload)) {
        block.header.flags |= block_flag::COMPRESSED;
    } else {
        block.payload.assign(payload.begin(), payload.end());
    }
    block.header.payloadChecksum = crc32c(block.payload.data(), block.payload.size());
    return block;
}

int BlockWriter::append(const StoredBlock& block, pw_u64_t firstTick) {
    if (!m_error.empty()) {
        return 1;
    }
    if (block.payload.size() > c_maxPayload) {
        return fail(std::string("the block of kind ") + nameOf(block.header.kind) +
                    " is too large to be saved");
    }
    BlockHeader header = block.header;
    header.length = static_cast<pw_u32_t>(block.payload.size());
    header.firstTick = firstTick;
    header.sequence = m_nextSequence;
    header.tag = m_tag;
    put_i(header, block.payload);
    return 0;
}

int BlockWriter::appendAsIs(const BlockHeader& header, std::span<const char> payload) {
    if (m_error.empty()) {
        put_i(header, payload);
    }
    return m_error.empty() ? 0 : 1;
}

void BlockWriter::put_i(const BlockHeader& header, std::span<const char> payload) {
    if (header.kind != BlockKind::SAMPLES && header.kind != BlockKind::REFERENCE) {
        m_index.add(header, bytes());
    }
    const BlockHeaderBytes front = encode(header);
    m_gathered.insert(m_gathered.end(), front.begin(), front.end());
    m_gathered.insert(m_gathered.end(), payload.begin(), payload.end());
    m_nextSequence = header.sequence + 1;
    ++m_blocks;
}

int BlockWriter::flush() {
    if (m_error.empty() && !m_gathered.empty()) {
        if (const int failure = m_file.write(m_gathered.data(), m_gathered.size()); failure != 0) {
            fail(pw_strerror(failure));
        } else {
            m_written += m_gathered.size();
            m_gathered.clear();
        }
    }
    return m_error.empty() ? 0 : 1;
}

int BlockWriter::finish(FileTotals totals) {
    totals.blocks = m_blocks;
    std::vector<char> payload;
    encode(totals, payload);
    append(store(BlockKind::END, 0, 0, payload), totals.lastTick);

    m_index.totals = totals;
    Trailer trailer;
    trailer.indexOffset = bytes();
    trailer.fileSize = trailer.indexOffset + c_blockHeaderSize + encodedSize(m_index);
    trailer.tag = m_tag;
    payload.clear();
    encode(m_index, trailer, payload);
    // Never compressed: its last bytes are found from the end of the file.
    StoredBlock block;
    block.header.kind = BlockKind::INDEX;
    block.header.payloadChecksum = crc32c(payload.data(), payload.size());
    block.payload = std::move(payload);
    append(block, totals.lastTick);

    flush();
    if (m_error.empty()) {
        if (const int failure = m_file.sync(); failure != 0) {
            fail(pw_strerror(failure));
        }
    }
    if (const int failure = m_file.close(); failure != 0) {
        fail(pw_strerror(failure));
    }
    return m_error.empty() ? 0 : 1;
}

} // namespace pwr::saved
