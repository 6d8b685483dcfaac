#include "common/pw_utils.h"

#include "common/platform/file.h"

#include <algorithm>
#include <deque>
#include <system_error>

namespace pwr {

namespace {

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

bool isHexDigit(char character) {
    return isDigit(character) || (character >= 'a' && character <= 'f') ||
           (character >= 'A' && character <= 'F');
}

char upperCase(char character) {
    return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A') : character;
}

char lowerCase(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

/// Bytes of multi-byte characters belong to words: a word with an umlaut is one word.
bool isPartOfWord(char character) {
    return isDigit(character) || upperCase(character) != lowerCase(character) || character == '\'' ||
           (static_cast<unsigned char>(character) & 0x80) != 0;
}

} // namespace

bool isNumber(const std::string& text) {
    if (text.empty() || text == "-") {
        return false;
    }
    std::size_t position = text.front() == '-' ? 1 : 0;
    const bool hex = text.size() >= 3 && text[0] == '0' && lowerCase(text[1]) == 'x';
    if (hex) {
        position = 2;
    }
    return std::all_of(text.begin() + static_cast<std::ptrdiff_t>(position), text.end(),
                       [hex](char character) {
                           return character == '.' || (hex ? isHexDigit(character) : isDigit(character));
                       });
}

std::string getUpperCaseString(const std::string& text) {
    std::string upper = text;
    std::transform(upper.begin(), upper.end(), upper.begin(), upperCase);
    return upper;
}

std::string getLowerCaseString(const std::string& text) {
    std::string lower = text;
    std::transform(lower.begin(), lower.end(), lower.begin(), lowerCase);
    return lower;
}

std::string convertToTitle(const std::string& text) {
    std::string title = text;
    bool inWord = false;
    for (char& character : title) {
        character = inWord ? lowerCase(character) : upperCase(character);
        inWord = isPartOfWord(character);
        if (character == '_') {
            character = ' ';
        }
    }
    return title;
}

bool StringOps::containsAny(const std::string& text, const std::string& characters) {
    return text.find_first_of(characters) != std::string::npos;
}

bool StringOps::containsAny(const std::string& text, const std::vector<std::string>& words) {
    return std::any_of(words.begin(), words.end(),
                       [&](const std::string& word) { return text.find(word) != std::string::npos; });
}

std::string PathOps::getFilenameFromPath(const std::string& path) {
    const char separators[] = {'/', getPathSeparator(), '\0'};
    const std::size_t last = path.find_last_of(separators);
    return last == std::string::npos ? path : path.substr(last + 1);
}

std::string PathOps::normalizePathSeparator(const std::string& path) {
    std::string normalized = path;
    const char separator = getPathSeparator();
    std::replace(normalized.begin(), normalized.end(), separator == '/' ? '\\' : '/', separator);
    return normalized;
}

char PathOps::getPathSeparator() {
    return platform::pathSeparator();
}

int pw_open(const char* path, int flags, int mode) {
    return platform::openDescriptor(path, flags, mode);
}

std::string pw_strerror(int error) {
    return std::generic_category().message(error);
}

bool pw_fileExists(const std::string& path) {
    return platform::pathExists(path) && !platform::isFolder(path);
}

std::string pw_getenv(const std::string& name) {
    std::string value;
    platform::environmentVariable(name, value);
    return value;
}

std::FILE* pw_freopen(const char* path, const char* mode, std::FILE* stream) {
    return platform::reopenFile(path, mode, stream);
}

int pw_dup2(int from, int to) {
    return platform::duplicateDescriptor(from, to);
}

bool tw_dirExists(const std::string& path) {
    return platform::isFolder(path);
}

std::string tw_temp_directory_path() {
    return platform::temporaryFolder();
}

int mkpath(const std::string& path) {
    // From the whole path up to what exists, then down again: so the top is never asked for, which may
    // be a drive or a share that cannot be looked at.
    std::deque<std::string> missing;
    const char separators[] = {'/', PathOps::getPathSeparator(), '\0'};
    for (std::string folder = path; !folder.empty() && !platform::isFolder(folder);) {
        const std::size_t last = folder.find_last_of(separators);
        if (last == std::string::npos || last + 1 < folder.size()) {
            missing.push_front(folder);
        }
        folder.resize(last == std::string::npos ? 0 : last);
    }
    for (const std::string& folder : missing) {
        // Another process may be making the same path.
        if (!platform::makeFolder(folder) && !platform::isFolder(folder)) {
            return 1;
        }
    }
    return path.empty() ? 1 : 0;
}

bool isDir(const std::string& path) {
    return tw_dirExists(path);
}

std::FILE* openFileHandle(const std::string& path, const char* mode) {
    return platform::openFile(path.c_str(), mode);
}

} // namespace pwr
