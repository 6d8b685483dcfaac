#include "common/saved/sample_columns.h"

#include <array>

namespace pwr::saved {

namespace {

constexpr unsigned c_codeBits = 3;
constexpr unsigned c_shiftBits = 6;
constexpr unsigned c_widthBits = 6; // of a width less one

} // namespace

std::uint64_t lengthOfAll(std::span<const std::uint64_t> numbers, unsigned shift) {
    std::uint64_t length = 0;
    for (const std::uint64_t number : numbers) {
        length += lengthOfRice(number, shift);
    }
    return length;
}

unsigned bestShift(std::span<const std::uint64_t> numbers) {
    // Numbers of one length cost about the same: one representative of each length is enough to choose by.
    std::array<std::uint64_t, 65> counts{};
    for (const std::uint64_t number : numbers) {
        ++counts[static_cast<std::size_t>(std::bit_width(number))];
    }
    const auto used = [&counts](std::size_t width) { return counts[width] != 0; };
    unsigned shortest = 0;
    unsigned longest = 64;
    for (; shortest < longest && !used(shortest); ++shortest) {}
    for (; longest > shortest && !used(longest); --longest) {}
    unsigned best = 0;
    std::uint64_t bestLength = UINT64_MAX;
    // A shift below makes even the shortest numbers wide, one above only adds zeros.
    for (unsigned shift = std::min(shortest < 5 ? 0 : shortest - 5, bit_code::c_maxShift);
         shift <= std::min(longest, bit_code::c_maxShift); ++shift) {
        std::uint64_t length = 0;
        for (unsigned width = shortest; width <= longest; ++width) {
            const std::uint64_t middle = width < 2 ? width : std::uint64_t{3} << (width - 2);
            length += used(width) ? counts[width] * lengthOfRice(middle, shift) : 0;
        }
        if (length < bestLength) {
            bestLength = length;
            best = shift;
        }
    }
    return best;
}

unsigned lengthOf(const ColumnCoding& coding) {
    return c_codeBits + c_shiftBits + (coding.code == ColumnCode::XOR ? c_widthBits : 0);
}

void write(BitWriter& out, const ColumnCoding& coding) {
    out.bits(static_cast<std::uint64_t>(coding.code), c_codeBits);
    out.bits(coding.shift, c_shiftBits);
    if (coding.code == ColumnCode::XOR) {
        out.bits(coding.width - 1U, c_widthBits);
    }
}

bool read(BitReader& in, ColumnCoding& coding) {
    const std::uint64_t code = in.bits(c_codeBits);
    coding.code = static_cast<ColumnCode>(code);
    coding.shift = static_cast<pw_u8_t>(in.bits(c_shiftBits));
    coding.width = 0;
    if (coding.code == ColumnCode::XOR) {
        coding.width = static_cast<pw_u8_t>(in.bits(c_widthBits) + 1);
        return coding.shift + coding.width <= 64;
    }
    return code < c_columnCodes && coding.shift <= bit_code::c_maxShift;
}

void ColumnChooser::prepare_i(std::span<const std::uint64_t> values) {
    m_deltas.clear();
    m_seconds.clear();
    m_sparse.clear();
    m_differing = 0;
    std::uint64_t step = 0;
    for (std::size_t i = 1; i < values.size(); ++i) {
        const std::uint64_t delta = values[i] - values[i - 1];
        m_deltas.push_back(zigzag(delta));
        m_differing |= values[i] ^ values[i - 1];
        if (i > 1) {
            m_seconds.push_back(zigzag(delta - step));
        }
        if (delta != 0) {
            m_sparse.push_back(zigzag(delta) - 1);
        }
        step = delta;
    }
    m_firstDelta = m_deltas.empty() ? 0 : m_deltas.front();
}

std::uint64_t ColumnChooser::length_i(const ColumnCoding& coding) const {
    switch (coding.code) {
    case ColumnCode::SECOND: return lengthOfWide(m_firstDelta) + lengthOfAll(m_seconds, coding.shift);
    case ColumnCode::SPARSE: return m_deltas.size() + lengthOfAll(m_sparse, coding.shift);
    case ColumnCode::XOR: return m_deltas.size() + m_sparse.size() * coding.width;
    default: return lengthOfAll(m_deltas, coding.shift);
    }
}

ColumnChooser::Offer ColumnChooser::offer_i(ColumnCode code) const {
    Offer offer{{code, 0, 0}, 0};
    if (code == ColumnCode::XOR) {
        const auto lowest = static_cast<unsigned>(std::countr_zero(m_differing | std::uint64_t{1} << 63));
        const auto beyond = static_cast<unsigned>(std::bit_width(m_differing));
        offer.coding.shift = static_cast<pw_u8_t>(lowest);
        offer.coding.width = static_cast<pw_u8_t>(std::max(beyond, lowest + 1) - lowest);
    } else {
        const auto& numbers = code == ColumnCode::SECOND   ? m_seconds
                              : code == ColumnCode::SPARSE ? m_sparse
                                                           : m_deltas;
        offer.coding.shift = static_cast<pw_u8_t>(bestShift(numbers));
    }
    offer.length = length_i(offer.coding);
    return offer;
}

ColumnCoding ColumnChooser::choose(std::span<const std::uint64_t> values, const ColumnCoding* usual) {
    prepare_i(values);
    Offer best = offer_i(ColumnCode::DELTA);
    for (const ColumnCode code : {ColumnCode::SECOND, ColumnCode::SPARSE, ColumnCode::XOR}) {
        const Offer other = offer_i(code);
        if (other.length + lengthOf(other.coding) < best.length + lengthOf(best.coding)) {
            best = other;
        }
    }
    if (usual == nullptr || usual->code == ColumnCode::MIXED) {
        return best.coding;
    }
    const bool fits =
        usual->code != ColumnCode::XOR || (m_differing & ~(lowBits(usual->width) << usual->shift)) == 0;
    return fits && length_i(*usual) <= best.length + lengthOf(best.coding) ? *usual : best.coding;
}

ColumnCoding ColumnChooser::chooseMixed(std::span<const std::uint64_t> numbers, std::uint64_t base) {
    m_deltas.clear();
    for (const std::uint64_t number : numbers) {
        m_deltas.push_back(zigzag(number - base));
        base = number;
    }
    return {ColumnCode::MIXED, static_cast<pw_u8_t>(bestShift(m_deltas)), 0};
}

} // namespace pwr::saved
