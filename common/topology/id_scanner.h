#pragma once

#include "common/pw_types.h"

#include <cstddef>
#include <limits>
#include <string_view>

namespace pwr {

/// Reads the numbers of a topology text one after the other, without copying them. Numbers stand
/// between blanks, tabs and line ends and are decimal, "0x" hexadecimal or, with a leading zero,
/// octal. They convert as far as they are numeric (0 when they are not at all); a minus sign takes
/// the two's complement and numbers beyond 32 bits give the largest one, so that "-1" and
/// "4294967295" are the same on every platform.
class IdScanner {
public:
    explicit IdScanner(std::string_view text) : m_position(text.data()), m_end(m_position + text.size()) {}

    /// False at the end of the text.
    bool next(pw_u32_t& value) {
        while (m_position != m_end && isSeparator(*m_position)) {
            ++m_position;
        }
        if (m_position == m_end) {
            return false;
        }
        // Nearly all numbers are plain decimal ones: nothing to find out about their base.
        const char* position = m_position;
        const bool negative = *position == '-';
        position += negative ? 1 : 0;
        const char* const digits = position;
        pw_u64_t number = 0;
        while (position != m_end && digitOf(*position) <= 9) {
            number = number * 10 + digitOf(*position);
            ++position;
        }
        const auto count = position - digits;
        const bool plain = count == 1 || (count > 1 && count <= c_safeDigits && *digits != '0');
        if (plain && (position == m_end || isSeparator(*position))) {
            m_position = position;
            value = limited(number, negative);
        } else {
            value = convert_i();
        }
        return true;
    }

private:
    static constexpr std::ptrdiff_t c_safeDigits = 19; ///< as many decimal digits as 64 bits hold
    static constexpr pw_u32_t c_largest = std::numeric_limits<pw_u32_t>::max();

    static bool isSeparator(char character) {
        return character <= ' ' &&
               (character == ' ' || character == '\n' || character == '\t' || character == '\r');
    }
    static pw_u32_t limited(pw_u64_t number, bool negative) {
        if (number > c_largest) {
            return c_largest;
        }
        const auto result = static_cast<pw_u32_t>(number);
        return negative ? 0U - result : result;
    }
    static pw_u32_t digitOf(char character) {
        return static_cast<pw_u32_t>(static_cast<unsigned char>(character)) - '0';
    }
    static pw_u32_t hexDigitOf(char character) {
        const pw_u32_t digit = digitOf(character);
        if (digit <= 9) {
            return digit;
        }
        const pw_u32_t letter = (static_cast<pw_u32_t>(static_cast<unsigned char>(character)) | 0x20U) - 'a';
        return letter < 6 ? letter + 10 : c_largest;
    }

    /// Converts the token at the position in all generality and moves behind it.
    pw_u32_t convert_i() {
        const char* position = m_position;
        while (m_position != m_end && !isSeparator(*m_position)) {
            ++m_position;
        }
        const char* const end = m_position;
        while (position != end && (*position == '\v' || *position == '\f')) {
            ++position;
        }
        const bool negative = position != end && *position == '-';
        if (negative || (position != end && *position == '+')) {
            ++position;
        }
        pw_u32_t base = 10;
        if (position != end && *position == '0') {
            base = 8;
            if (end - position > 2 && (position[1] == 'x' || position[1] == 'X') &&
                hexDigitOf(position[2]) < 16) {
                base = 16;
                position += 2;
            }
        }
        pw_u64_t number = 0;
        for (; position != end; ++position) {
            const pw_u32_t digit = hexDigitOf(*position);
            if (digit >= base) {
                break;
            }
            number = number * base + digit;
            if (number > c_largest) {
                break;
            }
        }
        return limited(number, negative);
    }

    const char* m_position;
    const char* m_end;
};

} // namespace pwr
