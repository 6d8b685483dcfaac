#include "common/telemetry/q_format.h"

#include <charconv>
#include <cmath>
#include <string_view>

#include "common/plugin/logger.h"

namespace pwr {

namespace {

constexpr unsigned BITS = 64;

/// 0 when the whole text is a decimal number that fits.
int readBits(std::string_view text, pw_u8_t& bits) {
    const char* const end = text.data() + text.size();
    const auto [last, error] = std::from_chars(text.data(), end, bits);
    return error == std::errc() && last == end ? 0 : 1;
}

/// 0 when the text is a data format.
int readFormat(std::string_view text, tw_qformat& format) {
    const std::size_t dot = text.find('.');
    if (text.empty() || (text[0] != 'U' && text[0] != 'S') || dot == std::string_view::npos) {
        return 1;
    }
    format.sign = text[0];
    const bool isWrong =
        readBits(text.substr(1, dot - 1), format.x) != 0 || readBits(text.substr(dot + 1), format.y) != 0;
    return isWrong ? 1 : 0;
}

} // namespace

tw_qformat retrieveQFormat(const std::string& text) {
    tw_qformat format;
    if (readFormat(text, format) != 0) {
        logError("ERROR: Invalid DATA-FORMAT entry. %s is invalid. Format expected as UX.Y or SX.Y",
                 text.c_str());
        return {};
    }
    return format;
}

double convertToFloatPoint(pw_u64_t raw, const tw_qformat& format) {
    if (format.sign != 'U' && format.sign != 'S') {
        logError("ERROR: Invalid DATA-FORMAT entry. %c%d.%d is invalid. Format expected as UX.Y or SX.Y",
                 format.sign, int{format.x}, int{format.y});
        return static_cast<double>(raw);
    }
    const unsigned signBit = (unsigned{format.x} + format.y + 1) % BITS;
    if (format.sign == 'U' || (raw >> signBit & 1) == 0) {
        return std::ldexp(static_cast<double>(raw), -int{format.y});
    }
    const pw_u64_t below = (pw_u64_t{1} << signBit) - 1;
    // Subtracted from 0, as a minus in front of 0 would be printed.
    return 0.0 - std::ldexp(static_cast<double>((~raw + 1) & below), -int{format.y});
}

} // namespace pwr
