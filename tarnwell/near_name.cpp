#include "tarnwell/near_name.h"

#include <algorithm>

namespace tarnwell {
namespace {

/// Letters to insert, remove, replace or swap with their neighbour, to come from one word to the other.
std::size_t distance(const std::string& from, const std::string& to) {
    std::vector<std::vector<std::size_t>> rows(from.size() + 1, std::vector<std::size_t>(to.size() + 1));
    for (std::size_t i = 0; i <= from.size(); ++i) {
        for (std::size_t j = 0; j <= to.size(); ++j) {
            if (i == 0 || j == 0) {
                rows[i][j] = i + j;
                continue;
            }
            const std::size_t replaced = rows[i - 1][j - 1] + (from[i - 1] == to[j - 1] ? 0 : 1);
            rows[i][j] = std::min({rows[i - 1][j] + 1, rows[i][j - 1] + 1, replaced});
            if (i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1]) {
                rows[i][j] = std::min(rows[i][j], rows[i - 2][j - 2] + 1);
            }
        }
    }
    return rows[from.size()][to.size()];
}

} // namespace

std::string suggestion(const std::string& word, const std::vector<std::string>& names) {
    constexpr std::size_t longestWord = 60; // the work grows with the square of it
    if (word.size() > longestWord) {
        return {};
    }
    std::string nearest;
    // A third of the word wrong is a slip; more is another word.
    std::size_t least = std::max<std::size_t>(1, word.size() / 3) + 1;
    for (const std::string& name : names) {
        // The begin of a name is near to it, too.
        const bool isBegin = word.size() > 4 && name.rfind(word, 0) == 0;
        const std::size_t far = isBegin ? 1 : distance(word, name);
        if (far < least) {
            least = far;
            nearest = name;
        }
    }
    return nearest.empty() ? std::string() : "; did you mean " + nearest + "?";
}

} // namespace tarnwell
