#pragma once

#include <sstream>
#include <string>
#include <vector>

namespace pwr {

/// Bytes of a text of hexadecimal pairs; what stands behind ";" in a line is a remark.
inline std::vector<char> bytesOf(const std::string& text) {
    std::vector<char> bytes;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream pairs(line.substr(0, line.find(';')));
        for (std::string pair; pairs >> pair;) {
            bytes.push_back(static_cast<char>(std::stoul(pair, nullptr, 16)));
        }
    }
    return bytes;
}

} // namespace pwr
