#include "common/saved/index.h"

#include "common/saved/crc32c.h"
#include "common/saved/payload_codec.h"

#include <algorithm>
#include <cstring>

namespace pwr::saved {

namespace {

constexpr std::size_t c_fixedSize = 4 * sizeof(pw_u64_t) + 2 * sizeof(pw_u32_t);
constexpr std::size_t c_entrySize = 18;
/// Keeps the index below a payload's limit.
constexpr std::size_t c_maxEntries = 800'000;
static_assert(c_fixedSize + c_maxEntries * c_entrySize + c_trailerSize <= c_maxPayload);

constexpr std::size_t c_trailerChecked = 20;

bool take(PayloadReader& in, FileTotals& totals) {
    return in.take(totals.readings, totals.values, totals.blocks, totals.lastTick);
}

} // namespace

void encode(const FileTotals& totals, std::vector<char>& payload) {
    PayloadWriter(payload).put(totals.readings, totals.values, totals.blocks, totals.lastTick);
}

bool decode(std::span<const char> payload, FileTotals& totals) {
    PayloadReader in(payload);
    return take(in, totals) && in.isDone();
}

void Index::add(const BlockHeader& header, pw_u64_t offset) {
    if (entries.size() >= c_maxEntries) {
        ++omitted;
        return;
    }
    entries.push_back({header.kind, header.flags, header.ordinal, header.sequence, offset});
}

void Index::addLost(IndexEntry entry) {
    entry.offset = 0;
    const auto place = std::ranges::lower_bound(entries, entry.sequence, {}, &IndexEntry::sequence);
    if (entries.size() < c_maxEntries && (place == entries.end() || place->sequence != entry.sequence)) {
        entries.insert(place, entry);
    }
}

pw_u64_t Index::listedWithin(pw_u32_t first, pw_u32_t last) const {
    const auto from = std::ranges::lower_bound(entries, first, {}, &IndexEntry::sequence);
    const auto to = std::ranges::upper_bound(entries, last, {}, &IndexEntry::sequence);
    return from < to ? static_cast<pw_u64_t>(to - from) : 0;
}

std::size_t encodedSize(const Index& index) {
    return c_fixedSize + index.entries.size() * c_entrySize + c_trailerSize;
}

void encode(const Index& index, const Trailer& trailer, std::vector<char>& payload) {
    encode(index.totals, payload);
    PayloadWriter out(payload);
    out.put(static_cast<pw_u32_t>(index.entries.size()), index.omitted);
    for (const IndexEntry& entry : index.entries) {
        out.put(static_cast<pw_u16_t>(entry.kind), entry.flags, entry.ordinal, entry.sequence, entry.offset);
    }
    const std::size_t start = payload.size();
    constexpr pw_u16_t reserved = 0;
    out.put(trailer.indexOffset, trailer.fileSize, trailer.tag, reserved);
    out.put(crc32c(payload.data() + start, c_trailerChecked));
    payload.insert(payload.end(), c_endMark.begin(), c_endMark.end());
}

bool decode(std::span<const char> payload, Index& index) {
    if (payload.size() < c_fixedSize + c_trailerSize) {
        return false;
    }
    PayloadReader in(payload.first(payload.size() - c_trailerSize));
    pw_u32_t count = 0;
    index.entries.clear();
    if (!take(in, index.totals) || !in.take(count, index.omitted) ||
        in.left().size() != std::size_t{count} * c_entrySize) {
        return false;
    }
    index.entries.reserve(count);
    for (pw_u32_t i = 0; i < count; ++i) {
        IndexEntry entry;
        pw_u16_t kind = 0;
        in.take(kind, entry.flags, entry.ordinal, entry.sequence, entry.offset);
        entry.kind = static_cast<BlockKind>(kind);
        index.entries.push_back(entry);
    }
    // Falling sequences would defeat the look-up by sequence.
    return std::ranges::is_sorted(index.entries, std::ranges::less_equal{}, &IndexEntry::sequence);
}

bool decode(std::span<const char, c_trailerSize> bytes, Trailer& trailer) {
    PayloadReader in(bytes);
    pw_u16_t reserved = 0;
    pw_u32_t checksum = 0;
    in.take(trailer.indexOffset, trailer.fileSize, trailer.tag, reserved, checksum);
    return std::memcmp(in.left().data(), c_endMark.data(), c_endMark.size()) == 0 &&
           isChecksum(checksum, crc32c(bytes.data(), c_trailerChecked));
}

} // namespace pwr::saved
