#pragma once

#include "common/metadata/serializer.h"

#include <cstddef>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace pwr {

using ValuePairs = std::vector<std::pair<std::string, std::string>>;

enum class PairMiss { NONE, KEY, VALUE };

/// Reads that many (key, value) pairs in place of the given ones, and tells what was missing first;
/// empty texts count as missing. The count is foreign: it reserves nothing.
inline PairMiss readPairs(Serializer& in, std::size_t count, ValuePairs& pairs) {
    pairs.clear();
    for (std::size_t i = 0; i < count; ++i) {
        std::pair<std::string, std::string> pair;
        if (in.read(pair.first) == 0) {
            return PairMiss::KEY;
        }
        if (in.read(pair.second) == 0) {
            return PairMiss::VALUE;
        }
        pairs.push_back(std::move(pair));
    }
    return PairMiss::NONE;
}

/// The pairs of a payload as text, one a line; numbers do not follow the stream's base or locale.
inline void printPayload(std::ostream& out, const char* lead, const ValuePairs& pairs) {
    std::size_t index = 0;
    for (const auto& [key, value] : pairs) {
        out << lead << std::to_string(index++) << "]: key = " << key << ", value = " << value << '\n';
    }
}

} // namespace pwr
