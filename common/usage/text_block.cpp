#include "common/usage/text_block.h"

#include <algorithm>

namespace pwr::usage {
namespace {

/// Where the word at @p at ends. A number and its unit are one.
std::size_t endOfWord(const std::string& text, std::size_t at) {
    std::size_t end = std::min(text.find(' ', at), text.size());
    if (text.find_first_not_of("0123456789", at) == end && end + 1 < text.size()) {
        end = std::min(text.find(' ', end + 1), text.size());
    }
    return end;
}

} // namespace

std::string wrapBehind(const std::string& text, std::size_t indent, std::size_t width) {
    std::string lines;
    std::size_t column = 0; // 0: nothing stands behind the blanks yet
    for (std::size_t at = text.find_first_not_of(' '); at != std::string::npos;) {
        const std::size_t end = endOfWord(text, at);
        const std::size_t size = end - at;
        if (column == 0) {
            column = indent + size;
        } else if (column + 1 + size < width) {
            lines += ' ';
            column += 1 + size;
        } else {
            lines += '\n' + std::string(indent, ' ');
            column = indent + size;
        }
        lines.append(text, at, size);
        at = text.find_first_not_of(' ', end);
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
