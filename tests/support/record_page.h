#pragma once

#include "common/pw_utils.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace pwr {

/// The bytes of an example of a page that describes saved records: hexadecimal pairs; what stands
/// behind ";" in a line is a remark.
inline std::vector<char> recordExample(const std::string& name, const std::string& page = "records.md") {
    std::ifstream text(pw_getenv("KR_TEST_DATA") + "/../docs/formats/" + page);
    std::vector<char> bytes;
    std::string line;
    while (std::getline(text, line) && line != "```hex " + name) {}
    while (std::getline(text, line) && line != "```") {
        std::istringstream pairs(line.substr(0, line.find(';')));
        for (std::string pair; pairs >> pair;) {
            bytes.push_back(static_cast<char>(std::stoul(pair, nullptr, 16)));
        }
    }
    EXPECT_FALSE(bytes.empty()) << name;
    return bytes;
}

inline std::vector<char> cutTo(const std::vector<char>& bytes, std::size_t size) {
    return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)};
}

} // namespace pwr
