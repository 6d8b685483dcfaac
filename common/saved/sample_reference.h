#pragma once

#include "common/driver_interface.h"
#include "common/saved/sample_columns.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace pwr::saved {

/// What a value is. Persistent: never renumber. A text's 64 bits are its number in a list of texts.
enum class ValueKind : pw_u8_t { MISSING = 0, BITS = 1, TEXT = 2 };

/// What readings must have in common to stand in the same columns.
struct PartKey {
    id_config_t id{};
    pw_u16_t first = 0; ///< instance of the first value
    pw_u16_t count = 0; ///< values of a reading

    /// For maps: a number that no other key has.
    std::uint64_t packed() const {
        return std::uint64_t{id.plugin} << 48 | std::uint64_t{id.metric} << 40 |
               std::uint64_t{id.message} << 32 | std::uint64_t{first} << 16 | count;
    }
};

/// What the next reading's times are guessed from.
struct PartTimes {
    pw_u32_t span = 0;     ///< read span of the reading before
    std::uint64_t gap = 0; ///< ticks between the end of whatever was read before it and its begin
    pw_u8_t spanShift = 0; ///< of the Rice code of spans
    pw_u8_t gapShift = 0;  ///< of the Rice code of ticks
};

/// The last value of a column, and how the column was written last.
struct ReferenceColumn {
    std::uint64_t bits = 0;
    ValueKind kind = ValueKind::BITS;
    bool hasCoding = false;
    ColumnCoding coding;
};

struct ReferencePart {
    PartKey key;
    pw_u8_t flags = 0;
    PartTimes times;
    std::vector<ReferenceColumn> columns;
};

/// All values at one moment, which blocks count from. Number 0 is the empty one: blocks that need nothing.
struct SampleReference {
    std::uint32_t number = 0;
    std::uint64_t tick = 0;
    std::vector<ReferencePart> parts;
    std::vector<std::string> texts;

    void write(std::vector<char>& payload) const;
    /// 0; or 1 and the reason. Foreign bytes: memory stays in proportion to them.
    int read(std::span<const char> payload, std::string& error);
};

/// Both kinds of payload begin with the version of the coding and the texts, byte by byte; bits follow to the end.
inline constexpr char c_sampleCoding = 1;
void writeTexts(std::vector<char>& payload, std::span<const std::string> texts);
void writeTextLengths(BitWriter& out, std::span<const std::string> texts);

/// A foreign payload taken apart.
class SamplePayload {
public:
    SamplePayload() = default;
    SamplePayload(const SamplePayload&) = delete;
    SamplePayload& operator=(const SamplePayload&) = delete;

    /// Takes a copy. 0; or 1 and the reason.
    int open(std::span<const char> payload, std::string& error);
    BitReader& bits() { return m_bits; }
    /// Cuts the texts by the lengths that the bits tell next; they live as long as the copy. 0 or 1.
    int cutTexts(std::vector<std::string_view>& out);

private:
    std::vector<char> m_bytes; // padded
    std::string_view m_texts;
    BitReader m_bits;
};

/// Bits of a text's number in a column.
constexpr unsigned widthOfTexts(std::size_t count) {
    return count < 2 ? 0 : static_cast<unsigned>(std::bit_width(count - 1));
}

void write(BitWriter& out, const PartKey& key);
PartKey readPartKey(BitReader& in);

inline constexpr unsigned c_byteBits = 8;
inline constexpr unsigned c_shiftOfSpanBits = 5;
inline constexpr unsigned c_shiftOfGapBits = 6;

} // namespace pwr::saved
