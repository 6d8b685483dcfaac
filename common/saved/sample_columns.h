#pragma once

#include "common/pw_types.h"
#include "common/saved/bit_stream.h"

#include <cstdint>
#include <span>
#include <vector>

namespace pwr::saved {

/// How the values of a changing column are written. Persistent: never renumber. A row's values stand in this order.
enum class ColumnCode : pw_u8_t {
    DELTA = 0,  ///< difference to the value before
    SECOND = 1, ///< difference to the difference before: counters that run evenly
    SPARSE = 2, ///< one bit while nothing changes, else the difference
    XOR = 3,    ///< one bit while nothing changes, else the bits that differ: reals
    MIXED = 4   ///< missing values or texts among numbers
};
inline constexpr unsigned c_columnCodes = 5;

struct ColumnCoding {
    ColumnCode code = ColumnCode::DELTA;
    pw_u8_t shift = 0; ///< of the Rice code; for XOR the lowest bit that ever differs
    pw_u8_t width = 0; ///< XOR: how many bits from there on

    friend bool operator==(const ColumnCoding&, const ColumnCoding&) = default;
};

/// The shift that makes these numbers shortest, or nearly so.
unsigned bestShift(std::span<const std::uint64_t> numbers);
std::uint64_t lengthOfAll(std::span<const std::uint64_t> numbers, unsigned shift);

/// Bits of a coding's description.
unsigned lengthOf(const ColumnCoding& coding);
void write(BitWriter& out, const ColumnCoding& coding);
/// False when the bits describe none.
bool read(BitReader& in, ColumnCoding& coding);

/// Finds the coding that makes a column shortest. Keeps its buffers from column to column.
class ColumnChooser {
public:
    /// Of at least two numbers. The usual coding needs no description: it is kept unless another saves more than its
    /// description takes; null when there is none.
    ColumnCoding choose(std::span<const std::uint64_t> values, const ColumnCoding* usual);
    /// The same for the numbers of a column that holds other things too, the first counted from `base`.
    ColumnCoding chooseMixed(std::span<const std::uint64_t> numbers, std::uint64_t base);

private:
    struct Offer {
        ColumnCoding coding;
        std::uint64_t length; // of the column without the coding's description
    };
    void prepare_i(std::span<const std::uint64_t> values);
    Offer offer_i(ColumnCode code) const;
    std::uint64_t length_i(const ColumnCoding& coding) const;

    std::vector<std::uint64_t> m_deltas;  // all zigzag
    std::vector<std::uint64_t> m_seconds; // without the first, which stands alone
    std::vector<std::uint64_t> m_sparse;  // changes only, less one
    std::uint64_t m_firstDelta = 0;
    std::uint64_t m_differing = 0; // every bit that ever differs from the value before
};

} // namespace pwr::saved
