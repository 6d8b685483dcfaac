#pragma once

#include "common/platform/append_file.h"
#include "common/saved/block_header.h"
#include "common/saved/compression.h"
#include "common/saved/index.h"

#include <algorithm>
#include <span>
#include <string>
#include <vector>

namespace pwr::saved {

/// A block as it goes into a file: the header still without sequence, tag and checksum.
struct StoredBlock {
    BlockHeader header;
    std::vector<char> payload;
};

/// Puts blocks one behind the other, gathers them in memory and hands them to the file in one piece. Keeps the index.
/// Failure: 1; the first error stays in error(), and nothing is written any more.
class BlockWriter {
public:
    int create(const std::string& path, bool mustBeNew);

    /// The header of the file; before the first block.
    void start(const FileHeader& header);

    /// Compresses the payload where that is worth it.
    StoredBlock store(BlockKind kind, pw_u16_t flags, pw_u16_t ordinal, std::span<const char> payload);
    /// With the next sequence.
    int append(const StoredBlock& block, pw_u64_t firstTick);
    /// A block of another file as it is, its sequence included.
    int appendAsIs(const BlockHeader& header, std::span<const char> payload);
    /// A block that is not in this file any more, for the index.
    void noteLost(const IndexEntry& entry) { m_index.addLost(entry); }
    /// Leaves a hole in the sequences, for blocks that are known to be lost.
    void continueAt(pw_u32_t sequence) { m_nextSequence = std::max(m_nextSequence, sequence); }
    pw_u32_t nextSequence() const { return m_nextSequence; }

    /// What was gathered so far.
    int flush();
    std::size_t gathered() const { return m_gathered.size(); }
    /// The end block and the index; closes the file once it is safe on the disk.
    int finish(FileTotals totals);

    void close() { m_file.close(); }

    std::uint64_t bytes() const { return m_written + m_gathered.size(); }
    const std::string& path() const { return m_path; }
    const std::string& error() const { return m_error; }
    int fail(const std::string& reason);

private:
    void put_i(const BlockHeader& header, std::span<const char> payload);

    platform::AppendFile m_file;
    std::string m_path;
    std::string m_error;
    std::vector<char> m_gathered;
    std::uint64_t m_written = 0;
    pw_u32_t m_nextSequence = 0;
    pw_u16_t m_tag = 0;
    pw_u64_t m_blocks = 0;
    Index m_index;
    Compression m_compression;
};

} // namespace pwr::saved
