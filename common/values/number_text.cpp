#include "common/values/number_text.h"

#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>

namespace pwr {

namespace {

// Below 2^52 a product still has a bit for the half, so its distance from a half tells the truth.
constexpr double EXACT_HALVES = 4503599627370496.0;

constexpr std::uint64_t powerOfTen(unsigned exponent) {
    return exponent == 0 ? 1 : 10 * powerOfTen(exponent - 1);
}

/// value * 10^Digits, rounded as the exact product would be, to even on a true tie. The floating
/// product can only be off where it lands on a half; there the fused product knows its error.
template <unsigned Digits> std::uint64_t roundedProduct(double value, double product) {
    const auto floor = static_cast<std::uint64_t>(static_cast<std::int64_t>(product));
    const double rest = product - static_cast<double>(static_cast<std::int64_t>(floor));
    if (rest != 0.5) return floor + (rest > 0.5 ? 1U : 0U);
    const double error = std::fma(value, static_cast<double>(powerOfTen(Digits)), -product);
    if (error == 0) return floor + (floor & 1U);
    return floor + (error > 0 ? 1U : 0U);
}

template <unsigned Digits> char* writeScaled(char* out, double value) {
    constexpr std::uint64_t scale = powerOfTen(Digits);
    const double product = value * static_cast<double>(scale);
    if (!(product < EXACT_HALVES)) return nullptr; // NaN too
    const std::uint64_t rounded = roundedProduct<Digits>(value, product);
    out = writeDecimal(out, rounded / scale);
    if constexpr (Digits > 0) {
        *out++ = '.';
        std::uint64_t fraction = rounded % scale;
        for (unsigned place = Digits; place-- > 0; fraction /= 10)
            out[place] = static_cast<char>('0' + fraction % 10);
        out += Digits;
    }
    return out;
}

// One row per precision that tables use.
constexpr char* (*SCALED_WRITERS[])(char*, double) = {writeScaled<0>, writeScaled<1>, writeScaled<2>,
                                                      writeScaled<3>};

} // namespace

char* writeDecimal(char* out, std::int64_t value) {
    return std::to_chars(out, out + INTEGER_TEXT_SIZE, value).ptr;
}

char* writeDecimal(char* out, std::uint64_t value) {
    return std::to_chars(out, out + INTEGER_TEXT_SIZE, value).ptr;
}

char* writeHexadecimal(char* out, std::uint64_t value) {
    if (value != 0) {
        *out++ = '0';
        *out++ = 'x';
    }
    return std::to_chars(out, out + 16, value, 16).ptr;
}

char* writeShortReal(char* out, double value, int precision) {
    if (static_cast<unsigned>(precision) >= std::size(SCALED_WRITERS)) return nullptr;
    if (std::signbit(value)) *out++ = '-';
    return SCALED_WRITERS[precision](out, std::fabs(value));
}

void appendReal(std::string& out, double value, int precision) {
    char buffer[512];
    const auto written =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, precision);
    if (written.ec == std::errc()) {
        out.append(buffer, written.ptr);
        return;
    }
    constexpr std::size_t longest = std::numeric_limits<double>::max_exponent10 + 3; // sign, digits, point
    const std::size_t start = out.size();
    out.resize(start + longest + static_cast<std::size_t>(precision));
    char* const begin = out.data() + start;
    const auto end =
        std::to_chars(begin, out.data() + out.size(), value, std::chars_format::fixed, precision).ptr;
    out.resize(start + static_cast<std::size_t>(end - begin));
}

} // namespace pwr
