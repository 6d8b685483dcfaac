// Any double with any precision, also as a range with a unit and a width: the text must be what
// printf writes, character by character.

#include "common/values/data.h"
#include "common/values/formatter.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

constexpr int LONGEST_PRECISION = 1200; // beyond the last digit that a double can have

std::string printed(double value, int precision) {
    const int size = std::snprintf(nullptr, 0, "%.*f", precision, value);
    std::string text(static_cast<std::size_t>(size) + 1, '\0');
    std::snprintf(text.data(), text.size(), "%.*f", precision, value);
    text.pop_back();
    return text;
}

void expect(const std::string& wanted, const pwr::Formatter& formatter, const pwr::Data& value) {
    std::string text;
    if (formatter.format(text, value) == 0 && text == wanted) return;
    std::fprintf(stderr, "expected \"%s\", got \"%s\"\n", wanted.c_str(), text.c_str());
    std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    double value = 0;
    std::uint16_t settings = 0;
    for (; size >= sizeof value + sizeof settings; size -= sizeof value + sizeof settings) {
        std::memcpy(&value, bytes, sizeof value);
        std::memcpy(&settings, bytes + sizeof value, sizeof settings);
        bytes += sizeof value + sizeof settings;
        // Every number gets the precisions of tables, which have a way of their own.
        for (const int precision : {0, 1, 2, 3, settings % LONGEST_PRECISION - 1})
            expect(printed(value, precision), pwr::RealFormatter(0, precision), pwr::Data(value));

        const int width = settings % 40;
        std::string range = printed(value, 2) + " -- " + printed(-value, 2) + "W";
        if (range.size() < static_cast<std::size_t>(width))
            range.insert(0, static_cast<std::size_t>(width) - range.size(), ' ');
        expect(range, pwr::RealFormatter("W", width, 2), pwr::Data(value, -value));
    }
    return 0;
}
