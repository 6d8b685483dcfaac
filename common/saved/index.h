#pragma once

#include "common/pw_types.h"
#include "common/saved/block_header.h"

#include <optional>
#include <span>
#include <vector>

namespace pwr::saved {

/// What a file holds: the payload of its end block, and a part of its index.
struct FileTotals {
    pw_u64_t readings = 0;
    pw_u64_t values = 0;
    pw_u64_t blocks = 0; ///< before the end block
    pw_u64_t lastTick = 0;

    bool operator==(const FileTotals&) const = default;
};

void encode(const FileTotals& totals, std::vector<char>& payload);
bool decode(std::span<const char> payload, FileTotals& totals);

/// Where a block stands that holds no readings.
struct IndexEntry {
    BlockKind kind{};
    pw_u16_t flags = 0;
    pw_u16_t ordinal = 0;
    pw_u32_t sequence = 0;
    pw_u64_t offset = 0; ///< 0: it is lost, but known to have held no readings

    bool operator==(const IndexEntry&) const = default;
};

/// Where everything but the readings stands, so that a large file is described by a few reads.
struct Index {
    FileTotals totals;
    pw_u32_t omitted = 0; ///< blocks that are not listed because the list would get too long
    std::vector<IndexEntry> entries;

    /// Such a block comes: lists or counts it.
    void add(const BlockHeader& header, pw_u64_t offset);
    /// Lists what a repaired file does not have any more.
    void addLost(IndexEntry entry);
    /// How many of the listed blocks have sequences from `first` to `last`.
    pw_u64_t listedWithin(pw_u32_t first, pw_u32_t last) const;
};

/// The last bytes of a file, and of its index.
struct Trailer {
    pw_u64_t indexOffset = 0; ///< of the index block
    pw_u64_t fileSize = 0;
    pw_u16_t tag = 0;
};

/// The payload, the trailer in its end.
void encode(const Index& index, const Trailer& trailer, std::vector<char>& payload);
bool decode(std::span<const char> payload, Index& index);
bool decode(std::span<const char, c_trailerSize> bytes, Trailer& trailer);

/// How long the payload will be.
std::size_t encodedSize(const Index& index);

} // namespace pwr::saved
