#include "tarnwell/number_words.h"

#include <array>
#include <cstdio>

namespace tarnwell {
namespace {

std::string withUnit(int digits, double value, const char* unit) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.*f", digits, value);
    return std::string(text.data()) + " " + unit;
}

} // namespace

std::string counted(std::uint64_t count, const std::string& thing) {
    return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

std::string byteCount(std::uint64_t bytes) {
    constexpr double kStep = 1000.0;
    constexpr std::array kUnits = {"kB", "MB", "GB", "TB"};
    if (static_cast<double>(bytes) < kStep) {
        return counted(bytes, "byte");
    }
    double value = static_cast<double>(bytes) / kStep;
    std::size_t unit = 0;
    for (; value >= kStep && unit + 1 < kUnits.size(); ++unit) {
        value /= kStep;
    }
    return withUnit(1, value, kUnits[unit]);
}

std::string seconds(double value) {
    return withUnit(3, value, "s");
}

std::string milliseconds(double value) {
    return withUnit(1, value, "ms");
}

} // namespace tarnwell
