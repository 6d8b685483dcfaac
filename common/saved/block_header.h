#pragma once

#include "common/export.h"
#include "common/pw_types.h"
#include "common/saved/file_format.h"

#include <array>
#include <span>

namespace pwr::saved {

/// What stands at the begin of a file. The identity tells files apart.
struct KRCOMMON_API FileHeader {
    pw_u16_t major = c_formatMajor;
    pw_u16_t minor = c_formatMinor;
    std::array<char, 16> identity{};

    /// The part of the identity that every block repeats, so that remains of another file on the disk are not taken
    /// for blocks of this one.
    pw_u16_t tag() const;
};

/// What stands in front of a block's payload.
struct BlockHeader {
    BlockKind kind{};
    pw_u16_t flags = 0;
    pw_u32_t length = 0;    ///< of the payload as it stands in the file
    pw_u64_t firstTick = 0; ///< of the first reading; in other blocks, of the last reading before
    pw_u32_t sequence = 0;  ///< one more than that of the block before
    pw_u16_t tag = 0;       ///< the file's
    /// SAMPLES: how many instances blocks the readings rely on. Others: how many of the kind came before; a copy has the
    /// number of what it repeats.
    pw_u16_t ordinal = 0;
    pw_u32_t payloadChecksum = 0;

    bool isCompressed() const { return (flags & block_flag::COMPRESSED) != 0; }
    bool isCopy() const { return (flags & block_flag::COPY) != 0; }
    bool isPreamble() const { return (flags & block_flag::PREAMBLE) != 0; }
};

using FileHeaderBytes = std::array<char, c_fileHeaderSize>;
using BlockHeaderBytes = std::array<char, c_blockHeaderSize>;

KRCOMMON_API FileHeaderBytes encode(const FileHeader& header);
KRCOMMON_API BlockHeaderBytes encode(const BlockHeader& header);

/// False when mark, length or checksum is wrong; `header` is undefined then.
KRCOMMON_API bool decode(const FileHeaderBytes& bytes, FileHeader& header);
KRCOMMON_API bool decode(const BlockHeaderBytes& bytes, BlockHeader& header);

/// What damage reports call a block of the kind.
KRCOMMON_API const char* nameOf(BlockKind kind);

} // namespace pwr::saved
