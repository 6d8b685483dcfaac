#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

// Private to the library: numbers as text, the same in every locale.

namespace pwr {

inline constexpr std::size_t INTEGER_TEXT_SIZE = 20; // the longest: 2^64-1, -2^63; hexadecimal takes 18
inline constexpr std::size_t SHORT_REAL_SIZE = 24;

/// Each writes at `out`, which has room for INTEGER_TEXT_SIZE characters, and returns the end.
char* writeDecimal(char* out, std::int64_t value);
char* writeDecimal(char* out, std::uint64_t value);
/// "0x" and lower-case digits; zero has no prefix, as in streams that show the base.
char* writeHexadecimal(char* out, std::uint64_t value);

/// Writes with `precision` digits after the point into SHORT_REAL_SIZE characters when that can be
/// done exactly with one product; null for every other number and precision.
char* writeShortReal(char* out, double value, int precision);
/// Appends any double with any precision, as printf's "%.*f" would write it (6 digits when negative).
void appendReal(std::string& out, double value, int precision);

} // namespace pwr
