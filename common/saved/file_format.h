#pragma once

#include "common/pw_types.h"

#include <array>
#include <cstddef>

// The layout of a saved collection (docs/formats/saved-collection.md): a header, blocks one behind the other, and, in
// a file that was closed, an index as the last block with its place at the very end. Everything is little-endian.

namespace pwr::saved {

/// What a block holds. Persistent: never renumber, never reuse. Readers skip numbers that they do not know.
enum class BlockKind : pw_u16_t {
    SYSTEM = 1,        ///< the system record, framed; the last one of a file is the one that counts
    DECLARATIONS = 2,  ///< collectors, metrics and messages, framed, in the order of their numbers
    INSTANCES = 3,     ///< entities and descriptors, and which message's values belong to them
    SAMPLES = 4,       ///< readings of at most one second
    CLOCKS = 5,        ///< readings of all clocks at one moment
    CONFIGURATION = 6, ///< the name and text of a configuration that the report was made with
    NOTES = 7,         ///< lines for the reader of the report
    END = 8,           ///< totals; a file without it was not closed
    INDEX = 9,         ///< where the other blocks are, samples excepted
    REFERENCE = 10     ///< values that the following samples blocks count from
};

/// Bits of a block's flags. Persistent.
namespace block_flag {
inline constexpr pw_u16_t COMPRESSED = 0x01; ///< the payload is u32 plain size and a zstd frame
inline constexpr pw_u16_t COPY = 0x02;       ///< repeats an earlier block, for the case that it is damaged
inline constexpr pw_u16_t PREAMBLE = 0x04;   ///< what a reader must know before the first reading
} // namespace block_flag

/// Bytes with the high bit, line ends of both kinds and a text's end: copies in text mode damage them visibly.
inline constexpr std::array<unsigned char, 8> c_fileMagic = {0xD7, 'T', 'W', 'S', '\r', '\n', 0x1A, '\n'};
/// Where a block begins; what a reader looks for behind a damaged header.
inline constexpr std::array<unsigned char, 8> c_blockMark = {0xF5, 0xB1, 'B', 'L', 'K', 0xC4, 0x8E, 0xFA};
/// The last bytes of a file that was closed.
inline constexpr std::array<unsigned char, 8> c_endMark = {0xD7, 'E', 'N', 'D', '\r', '\n', 0x1A, '\n'};

/// Readers refuse files of a higher major number; a higher minor number only adds kinds of blocks.
inline constexpr pw_u16_t c_formatMajor = 1;
inline constexpr pw_u16_t c_formatMinor = 0;

inline constexpr std::size_t c_fileHeaderSize = 32;
inline constexpr std::size_t c_blockHeaderSize = 40;
inline constexpr std::size_t c_trailerSize = 32;
/// Writers close a block before its payload gets larger, compressed or not; a reader takes a larger length for damage.
inline constexpr std::size_t c_maxPayload = std::size_t{16} << 20;

} // namespace pwr::saved
