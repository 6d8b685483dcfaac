#include "common/platform/file.h"
#include "common/platform/raw_file.h"
#include "common/pw_utils.h"

#include <algorithm>
#include <string_view>

namespace pwr {

namespace {

bool isPattern(std::string_view part) {
    return part.find_first_of("*?[") != std::string_view::npos;
}

/// Where the set that opens at `open` closes; npos when it does not, and "[" then is an ordinary
/// character. A "]" directly behind the opening belongs to the set.
std::size_t closeOfSet(std::string_view pattern, std::size_t open) {
    std::size_t first = open + 1;
    if (first < pattern.size() && (pattern[first] == '!' || pattern[first] == '^')) {
        ++first;
    }
    return pattern.find(']', first + 1);
}

bool isInSet(std::string_view set, char character) {
    const bool inverted = set.front() == '!' || set.front() == '^';
    if (inverted) {
        set.remove_prefix(1);
    }
    const auto code = [](char byte) { return static_cast<unsigned char>(byte); };
    bool found = false;
    for (std::size_t i = 0; i < set.size() && !found; ++i) {
        if (i + 2 < set.size() && set[i + 1] == '-') {
            found = code(set[i]) <= code(character) && code(character) <= code(set[i + 2]);
            i += 2;
        } else {
            found = set[i] == character;
        }
    }
    return found != inverted;
}

/// Whether one element of the pattern other than "*" matches the character; `position` moves behind it.
bool matchesOne(std::string_view pattern, std::size_t& position, char character) {
    const char element = pattern[position];
    if (element == '[') {
        const std::size_t close = closeOfSet(pattern, position);
        if (close != std::string_view::npos) {
            const std::string_view set = pattern.substr(position + 1, close - position - 1);
            position = close + 1;
            return isInSet(set, character);
        }
    }
    ++position;
    return element == '?' || element == character;
}

/// Only the last "*" is ever taken back: what an earlier one could gain, the last one can as well.
bool matchesName(std::string_view pattern, std::string_view name) {
    if (name.starts_with('.') && !pattern.starts_with('.')) {
        return false;
    }
    std::size_t at = 0;
    std::size_t star = std::string_view::npos;
    std::size_t starName = 0;
    for (std::size_t i = 0; i < name.size();) {
        if (at < pattern.size() && pattern[at] == '*') {
            star = ++at;
            starName = i;
        } else if (at < pattern.size() && matchesOne(pattern, at, name[i])) {
            ++i;
        } else if (star != std::string_view::npos) {
            at = star;
            i = ++starName;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', at) == std::string_view::npos;
}

std::vector<std::string> matchesBelow(const std::vector<std::string>& folders, std::string_view part) {
    std::vector<std::string> matches;
    for (const std::string& folder : folders) {
        if (!isPattern(part)) {
            matches.push_back(folder + std::string(part));
            continue;
        }
        std::vector<std::string> names; // stays empty when the folder cannot be listed
        platform::listFolder(folder.empty() ? "." : folder, names);
        for (const std::string& name : names) {
            if (matchesName(part, name)) {
                matches.push_back(folder + name);
            }
        }
    }
    return matches;
}

} // namespace

std::vector<std::string> doGlob(const std::string& pattern) {
    const char separators[] = {'/', PathOps::getPathSeparator(), '\0'};
    std::vector<std::string> paths(pattern.empty() ? 0 : 1);
    for (std::size_t begin = 0; begin < pattern.size();) {
        const std::size_t end = std::min(pattern.find_first_of(separators, begin), pattern.size());
        if (end > begin) {
            paths = matchesBelow(paths, std::string_view(pattern).substr(begin, end - begin));
        }
        begin = std::min(pattern.find_first_not_of(separators, end), pattern.size());
        const std::string separator = pattern.substr(end, begin - end);
        for (std::string& path : paths) {
            path += separator;
        }
    }
    std::erase_if(paths, [](const std::string& path) { return !platform::pathExists(path); });
    std::sort(paths.begin(), paths.end());
    return paths;
}

} // namespace pwr
