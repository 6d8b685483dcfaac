#include "common/config/ordered_pairs.h"

#include <algorithm>
#include <cstddef>

namespace pwr {

namespace {

constexpr std::size_t MAX_SEARCHED = 32;

} // namespace

const std::string* OrderedPairs::find(std::string_view key) const {
    const auto found =
        std::find_if(m_pairs.begin(), m_pairs.end(), [key](const auto& pair) { return pair.first == key; });
    return found == m_pairs.end() ? nullptr : &found->second;
}

bool OrderedPairs::contains(std::string_view key) const {
    return m_keys.empty() ? find(key) != nullptr : m_keys.find(key) != m_keys.end();
}

bool OrderedPairs::add(std::string_view key, std::string_view value) {
    if (contains(key)) {
        return false;
    }
    m_pairs.emplace_back(key, value);
    if (!m_keys.empty()) {
        m_keys.emplace(key);
    } else if (m_pairs.size() > MAX_SEARCHED) {
        for (const auto& pair : m_pairs) {
            m_keys.insert(pair.first);
        }
    }
    return true;
}

} // namespace pwr
