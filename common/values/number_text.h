#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

// Private to the library: numbers as text, the same in every locale. Each replaces what a text holds
// from `start` on: cutting a used text to its new length is cheaper than emptying and growing it.

namespace pwr {

void writeDecimal(std::string& out, std::size_t start, std::int64_t value);
void writeDecimal(std::string& out, std::size_t start, std::uint64_t value);
/// "0x" and lower-case digits; zero has no prefix, as in streams that show the base.
void writeHexadecimal(std::string& out, std::size_t start, std::uint64_t value);
/// Any double with any precision, as printf's "%.*f" would write it (6 digits when negative).
void writeReal(std::string& out, std::size_t start, double value, int precision);

} // namespace pwr
