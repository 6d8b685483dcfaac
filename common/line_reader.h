#pragma once

#include "common/export.h"

#include <cstdio>
#include <deque>
#include <string>
#include <vector>

namespace pwr {

/// Reads text files line by line, and trims what was read. Lines end in a line feed, with or without a
/// carriage return before it; they may have any length and hold any byte.
class KRCOMMON_API LineReader {
public:
    /// Replaces `line` by the next line without its end. False only at the end of the file: a last
    /// line without line end counts as a line.
    static bool getline(std::FILE* file, std::string& line);

    /// Appends all lines; -1 when the file cannot be opened or read (what was read before stays).
    static int get_all_lines(const char* path, std::vector<std::string>& lines);
    static int get_all_lines(const char* path, std::deque<std::string>& lines);
    static int get_all_lines(std::FILE* file, std::vector<std::string>& lines);
    static int get_all_lines(std::FILE* file, std::deque<std::string>& lines);

    /// Removes blanks, tabs, carriage returns and line feeds at both ends. A text of nothing else
    /// stays as it is: a blank item of a list is told from an empty one.
    static void trim(std::string& text);
    static std::string trim(const std::string& text);

    /// Removes every occurrence of a character.
    static void strip(std::string& text, char character);
};

} // namespace pwr
