#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "common/config/text_hash.h"
#include "common/export.h"

namespace pwr {

/// Pairs of key and value in the order of setting; a key is set once.
class KRCOMMON_API OrderedPairs {
public:
    using Pairs = std::vector<std::pair<std::string, std::string>>;

    /// False when the key is there already; the first value stays.
    bool add(std::string_view key, std::string_view value);
    [[nodiscard]] bool contains(std::string_view key) const;
    /// Null when the key is not set.
    [[nodiscard]] const std::string* find(std::string_view key) const;
    [[nodiscard]] const Pairs& get() const { return m_pairs; }

private:
    Pairs m_pairs;
    /// The keys again once they are many: looking through a few pairs is faster than any index, but a file
    /// with very many keys must not take quadratic time.
    std::unordered_set<std::string, TextHash, std::equal_to<>> m_keys;
};

} // namespace pwr
