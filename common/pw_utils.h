#pragma once

#include "common/export.h"
#include "common/pw_types.h"

#include <charconv>
#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>
#include <vector>

// Text and file helpers that the readers of configuration, metadata and topology share. Paths are
// UTF-8 on every platform. Nothing here depends on the locale.

namespace pwr {

/// Whether a text looks like a number: an optional minus sign, then decimal digits and dots in any
/// number, or hexadecimal ones behind 0x. Negative hexadecimal, exponents and "" are none. A filter,
/// not a conversion: "1.2.3" passes, and so does "-.".
KRCOMMON_API bool isNumber(const std::string& text);

/// Reads a whole text as an integer, decimal or hexadecimal behind "0x" or "0X". 0 on success. -1,
/// with `value` untouched, when anything else is in the text (a blank, a sign for an unsigned type, a
/// dot) or the number does not fit the type: nothing is cut off silently.
template <typename Integer> int extract_number_i(const std::string& text, Integer& value) {
    static_assert(std::is_integral_v<Integer> && !std::is_same_v<Integer, bool>);
    std::string_view digits = text;
    const bool hex = digits.starts_with("0x") || digits.starts_with("0X");
    if (hex) {
        digits.remove_prefix(2);
        if (digits.starts_with('-')) {
            return -1;
        }
    }
    Integer parsed{};
    const char* const end = digits.data() + digits.size();
    const auto [last, error] = std::from_chars(digits.data(), end, parsed, hex ? 16 : 10);
    if (error != std::errc() || last != end) {
        return -1;
    }
    value = parsed;
    return 0;
}

/// The next token of `text` from `position` on, at characters of the set; `position` moves to the
/// token's end. Empty, with the position at the end, when there is none.
KRCOMMON_API std::string getNextToken(const std::string& text, std::size_t& position, const char* delimiters);

/// ASCII letters change, all other bytes stay.
KRCOMMON_API std::string getUpperCaseString(const std::string& text);
KRCOMMON_API std::string getLowerCaseString(const std::string& text);

/// The first letter of each word in upper case and its others in lower case. Words are separated by
/// anything but letters, digits and apostrophes; separators stay, except that "_" becomes a blank.
KRCOMMON_API std::string convertToTitle(const std::string& text);

class KRCOMMON_API StringOps {
public:
    /// Whether the text contains any character of the set.
    static bool containsAny(const std::string& text, const std::string& characters);
    /// Whether the text contains any of the words; the empty word is in every text.
    static bool containsAny(const std::string& text, const std::vector<std::string>& words);
};

class KRCOMMON_API PathOps {
public:
    /// What stands behind the last separator; the whole path when there is none.
    static std::string getFilenameFromPath(const std::string& path);
    /// The path with "/" and "\\" replaced by the platform's own separator.
    static std::string normalizePathSeparator(const std::string& path);
    static char getPathSeparator();
};

/// The C library's open(), always in binary mode: a file descriptor, or -1 with errno set.
KRCOMMON_API int pw_open(const char* path, int flags, int mode = 0644);
/// The text of an errno value; safe on any thread.
KRCOMMON_API std::string pw_strerror(int error);
/// Whether something that is no folder is there.
KRCOMMON_API bool pw_fileExists(const std::string& path);
/// An environment variable; "" when it is not set.
KRCOMMON_API std::string pw_getenv(const std::string& name);
/// Redirects an open stream to a file; null on failure (the stream is closed then).
KRCOMMON_API std::FILE* pw_freopen(const char* path, const char* mode, std::FILE* stream);
/// Makes `to` another descriptor of what `from` is open on; `to`, or -1 with errno set.
KRCOMMON_API int pw_dup2(int from, int to);
/// Whether a folder is there; false for a file.
KRCOMMON_API bool tw_dirExists(const std::string& path);
/// Where temporary files go, without a separator at the end.
KRCOMMON_API std::string tw_temp_directory_path();
/// Makes a folder and all folders above it. 0 also when it is there already; 1 on failure, also when
/// a file stands in the way.
KRCOMMON_API int mkpath(const std::string& path);
/// As tw_dirExists().
KRCOMMON_API bool isDir(const std::string& path);
/// The existing paths that match a pattern, sorted. "*", "?" and "[set]" ("!" or "^" inverts, "-"
/// gives a range) match within one folder or file name and never a leading dot. A pattern without
/// any of these gives itself when it exists. Unreadable folders match nothing.
KRCOMMON_API std::vector<std::string> doGlob(const std::string& pattern);
/// Opens a file as the C library's fopen() does; null, with errno set, on failure. The caller closes.
KRCOMMON_API std::FILE* openFileHandle(const std::string& path, const char* mode);

} // namespace pwr
