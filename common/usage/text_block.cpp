#include "common/usage/text_block.h"

#include <algorithm>

namespace pwr::usage {
namespace {

// A line end or a tab in a text would break the column.
constexpr const char* kBlanks = " \t\r\n\v\f";

/// Where the word at @p at ends. A number and its unit, one blank behind it, are one.
std::size_t endOfWord(const std::string& text, std::size_t at) {
    const std::size_t end = std::min(text.find_first_of(kBlanks, at), text.size());
    const bool isNumber = text.find_first_not_of("0123456789", at) == end;
    if (isNumber && end < text.size() && text[end] == ' ' &&
        text.find_first_not_of(kBlanks, end) == end + 1) {
        return std::min(text.find_first_of(kBlanks, end + 1), text.size());
    }
    return end;
}

/// Columns of a word in UTF-8: one for each character.
std::size_t columnsOf(const std::string& text, std::size_t begin, std::size_t end) {
    return static_cast<std::size_t>(std::count_if(
        text.begin() + static_cast<std::ptrdiff_t>(begin), text.begin() + static_cast<std::ptrdiff_t>(end),
        [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
}

} // namespace

std::string wrapBehind(const std::string& text, std::size_t indent, std::size_t width) {
    std::string lines;
    std::size_t column = 0; // 0: nothing stands behind the blanks yet
    for (std::size_t at = text.find_first_not_of(kBlanks); at != std::string::npos;) {
        const std::size_t end = endOfWord(text, at);
        const std::size_t size = columnsOf(text, at, end);
        if (column == 0) {
            column = indent + size;
        } else if (column + 1 + size < width) {
            lines += ' ';
            column += 1 + size;
        } else {
            lines += '\n' + std::string(indent, ' ');
            column = indent + size;
        }
        lines.append(text, at, end - at);
        at = text.find_first_not_of(kBlanks, end);
    }
    return lines + '\n';
}

std::vector<std::string> splitList(const std::string& text) {
    std::vector<std::string> list;
    for (std::size_t at = 0; at <= text.size();) {
        const std::size_t end = std::min(text.find_first_of(",\r\n", at), text.size());
        const std::size_t first = text.find_first_not_of(" \t", at);
        if (first < end) {
            list.push_back(text.substr(first, text.find_last_not_of(" \t", end - 1) + 1 - first));
        }
        at = end + 1;
    }
    return list;
}

} // namespace pwr::usage
