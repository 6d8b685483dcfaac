#include "tarnwell/option_values.h"

#include "tarnwell/command_option.h"

#include <charconv>
#include <cmath>
#include <utility>

namespace tarnwell {
namespace {

// The saved interval has 16 bits; below a millisecond the reads would cost more than they show.
constexpr std::uint32_t kShortestIntervalMs = 1;
constexpr std::uint32_t kLongestIntervalMs = 60000;
constexpr double kShortestSeconds = 0.001;
constexpr double kLongestSeconds = 366.0 * 24 * 3600;

template <class Number> bool isWhole(const std::string& text, Number& value) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size();
}

bool isNumberBetween(const std::string& text, double least, double most, double& value) {
    return isWhole(text, value) && std::isfinite(value) && value >= least && value <= most;
}

} // namespace

std::uint32_t intervalOf(const std::string& text) {
    std::uint32_t value = 0;
    if (!isWhole(text, value) || value < kShortestIntervalMs || value > kLongestIntervalMs) {
        throw BadValue{"a whole number of milliseconds from 1 to 60000"};
    }
    return value;
}

double collectionSecondsOf(const std::string& text) {
    double value = 0;
    if (!isNumberBetween(text, kShortestSeconds, kLongestSeconds, value)) {
        throw BadValue{"a number of seconds from 0.001 to 31622400 (366 days)"};
    }
    return value;
}

double delaySecondsOf(const std::string& text) {
    double value = 0;
    if (!isNumberBetween(text, 0, kLongestSeconds, value)) {
        throw BadValue{"a number of seconds from 0 to 31622400 (366 days)"};
    }
    return value;
}

const std::string& nameOf(const std::string& text, const char* what) {
    if (text.empty()) {
        throw BadValue{what};
    }
    return text;
}

const std::string& machinePathOf(const std::string& text) {
    if (text.empty() || text.front() != '/') {
        throw BadValue{"the table's path on the machine, from / on"};
    }
    return text;
}

ResultSlice sliceOf(const std::string& text) {
    constexpr const char* expected =
        "two numbers of milliseconds from the begin, the smaller first: 1000-5000, or 1000-, or -5000";
    constexpr double longest = kLongestSeconds * 1000;
    const std::size_t dash = text.find('-');
    if (dash == std::string::npos || text.size() == 1) {
        throw BadValue{expected};
    }
    ResultSlice slice;
    const std::string begin = text.substr(0, dash);
    const std::string end = text.substr(dash + 1);
    if (!begin.empty() && !isNumberBetween(begin, 0, longest, slice.beginMs)) {
        throw BadValue{expected};
    }
    if (!end.empty()) {
        slice.endMs = 0;
        if (!isNumberBetween(end, 0, longest, *slice.endMs) || *slice.endMs <= slice.beginMs) {
            throw BadValue{expected};
        }
    }
    return slice;
}

pwr::platform::ProcessorPlace processorOf(const std::string& text) {
    constexpr unsigned processorsPerGroup = 64;
    const std::size_t colon = text.find(':');
    const bool hasGroup = colon != std::string::npos;
    std::uint16_t group = 0;
    std::uint16_t number = 0;
    const bool isNumber = isWhole(text.substr(hasGroup ? colon + 1 : 0), number);
    const bool isGroup = !hasGroup || isWhole(text.substr(0, colon), group);
    if (!isNumber || !isGroup || (hasGroup && number >= processorsPerGroup)) {
        throw BadValue{"a processor's number, or <group>:<number> with a number below 64"};
    }
    return {static_cast<pw_u16_t>(group + number / processorsPerGroup),
            static_cast<pw_u8_t>(number % processorsPerGroup)};
}

std::vector<std::string> wordsOf(const std::string& text) {
    std::vector<std::string> words;
    bool isOpen = false; // a word has begun, if only by an empty pair of quotes
    char quote = 0;
    for (const char c : text) {
        if (quote != 0 && c == quote) {
            quote = 0;
        } else if (quote == 0 && (c == '"' || c == '\'')) {
            quote = c;
            if (!std::exchange(isOpen, true)) {
                words.emplace_back();
            }
        } else if (quote == 0 && (c == ' ' || c == '\t')) {
            isOpen = false;
        } else {
            if (!std::exchange(isOpen, true)) {
                words.emplace_back();
            }
            words.back() += c;
        }
    }
    if (quote != 0) {
        throw BadValue{"a command line whose quotes are closed"};
    }
    if (words.empty()) {
        throw BadValue{"the command to run"};
    }
    return words;
}

} // namespace tarnwell
