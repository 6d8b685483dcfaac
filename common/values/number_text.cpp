#include "common/values/number_text.h"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <iterator>
#include <limits>

namespace pwr {

namespace {

/// All numbers of two digits, one after the other: "00" to "99", "00" to "ff".
template <std::size_t Base> constexpr auto makeDigitPairs() {
    constexpr char digits[] = "0123456789abcdef";
    std::array<char, 2 * Base * Base> pairs{};
    for (std::size_t number = 0; number < Base * Base; ++number) {
        pairs[2 * number] = digits[number / Base];
        pairs[2 * number + 1] = digits[number % Base];
    }
    return pairs;
}

template <std::size_t Base> constexpr auto DIGIT_PAIRS = makeDigitPairs<Base>();

constexpr std::uint64_t powerOfTen(unsigned exponent) {
    return exponent == 0 ? 1 : 10 * powerOfTen(exponent - 1);
}

constexpr auto POWERS_OF_TEN = [] {
    std::array<std::uint64_t, 20> powers{};
    for (unsigned exponent = 0; exponent < powers.size(); ++exponent)
        powers[exponent] = powerOfTen(exponent);
    return powers;
}();

unsigned decimalDigits(std::uint64_t value) {
    // The logarithm by bits, 1233 / 4096 = log10(2), is right or one too low.
    value |= 1; // no more digits than before, and never none
    const auto estimate = static_cast<unsigned>(std::bit_width(value)) * 1233 >> 12;
    return estimate + (value >= POWERS_OF_TEN[estimate] ? 1U : 0U);
}

/// Makes the text end `size` characters after `start` and returns its end: digits come out last
/// first, and what is written where it belongs need not be copied.
char* endAt(std::string& out, std::size_t start, std::size_t size) {
    out.resize(start + size);
    return out.data() + out.size();
}

template <std::size_t Base> char* prependPair(char* begin, std::uint64_t number) {
    begin -= 2;
    std::memcpy(begin, DIGIT_PAIRS<Base>.data() + 2 * number, 2);
    return begin;
}

char* prependDecimal(char* begin, std::uint64_t value) {
    for (; value >= 100; value /= 100)
        begin = prependPair<10>(begin, value % 100);
    if (value >= 10) return prependPair<10>(begin, value);
    *--begin = static_cast<char>('0' + value);
    return begin;
}

/// Just `Places` digits, with zeros in front.
template <unsigned Places> char* prependDigits(char* begin, std::uint64_t value) {
    if constexpr (Places >= 2)
        return prependDigits<Places - 2>(prependPair<10>(begin, value % 100), value / 100);
    else if constexpr (Places == 1)
        *--begin = static_cast<char>('0' + value);
    return begin;
}

// Below 2^52 a product still has a bit for the half, so its distance from a half tells the truth.
constexpr double EXACT_HALVES = 4503599627370496.0;

/// value * 10^Digits, rounded as the exact product would be, to even on a true tie. The floating
/// product can only be off where it lands on a half; there the fused product knows its error.
template <unsigned Digits> std::uint64_t roundedProduct(double value, double product) {
    const auto whole = static_cast<std::int64_t>(product);
    const auto floor = static_cast<std::uint64_t>(whole);
    const double rest = product - static_cast<double>(whole);
    if (rest != 0.5) return floor + (rest > 0.5 ? 1U : 0U);
    const double error = std::fma(value, static_cast<double>(powerOfTen(Digits)), -product);
    if (error == 0) return floor + (floor & 1U);
    return floor + (error > 0 ? 1U : 0U);
}

/// False when the product is too large to be exact, or no number.
template <unsigned Digits> bool writeScaled(std::string& out, std::size_t start, double value) {
    constexpr std::uint64_t scale = powerOfTen(Digits);
    const double magnitude = std::fabs(value);
    const double product = magnitude * static_cast<double>(scale);
    if (!(product < EXACT_HALVES)) return false;
    const std::uint64_t rounded = roundedProduct<Digits>(magnitude, product);
    const std::uint64_t whole = rounded / scale;
    const bool negative = std::signbit(value);
    char* begin =
        endAt(out, start, (negative ? 1U : 0U) + decimalDigits(whole) + (Digits > 0 ? Digits + 1 : 0));
    if constexpr (Digits > 0) {
        begin = prependDigits<Digits>(begin, rounded % scale);
        *--begin = '.';
    }
    begin = prependDecimal(begin, whole);
    if (negative) *--begin = '-';
    return true;
}

// One row per precision that tables use.
constexpr bool (*SCALED_WRITERS[])(std::string&, std::size_t, double) = {writeScaled<0>, writeScaled<1>,
                                                                         writeScaled<2>, writeScaled<3>};

void writeLongReal(std::string& out, std::size_t start, double value, int precision) {
    char buffer[512];
    const auto format = std::chars_format::fixed;
    const auto written = std::to_chars(buffer, std::end(buffer), value, format, precision);
    if (written.ec == std::errc()) {
        out.replace(start, std::string::npos, buffer, static_cast<std::size_t>(written.ptr - buffer));
        return;
    }
    constexpr std::size_t longest = std::numeric_limits<double>::max_exponent10 + 3; // sign, digits, point
    out.resize(start + longest + static_cast<std::size_t>(precision));
    const char* const end =
        std::to_chars(out.data() + start, out.data() + out.size(), value, format, precision).ptr;
    out.resize(static_cast<std::size_t>(end - out.data()));
}

} // namespace

void writeDecimal(std::string& out, std::size_t start, std::uint64_t value) {
    prependDecimal(endAt(out, start, decimalDigits(value)), value);
}

void writeDecimal(std::string& out, std::size_t start, std::int64_t value) {
    const auto bits = static_cast<std::uint64_t>(value);
    const std::uint64_t magnitude = value < 0 ? 0 - bits : bits;
    char* const begin =
        prependDecimal(endAt(out, start, decimalDigits(magnitude) + (value < 0 ? 1 : 0)), magnitude);
    if (value < 0) *(begin - 1) = '-';
}

void writeHexadecimal(std::string& out, std::size_t start, std::uint64_t value) {
    if (value == 0) {
        *(endAt(out, start, 1) - 1) = '0';
        return;
    }
    char* begin = endAt(out, start, static_cast<std::size_t>(std::bit_width(value) + 3) / 4 + 2);
    for (; value >= 16; value >>= 8)
        begin = prependPair<16>(begin, value & 0xff);
    if (value != 0) *--begin = DIGIT_PAIRS<16>[2 * value + 1];
    *--begin = 'x';
    *--begin = '0';
}

void writeReal(std::string& out, std::size_t start, double value, int precision) {
    const bool scalable = static_cast<unsigned>(precision) < std::size(SCALED_WRITERS);
    if (!scalable || !SCALED_WRITERS[precision](out, start, value))
        writeLongReal(out, start, value, precision);
}

} // namespace pwr
