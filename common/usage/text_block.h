#pragma once

#include "common/export.h"

#include <cstddef>
#include <string>
#include <vector>

namespace pwr::usage {

/// Cuts @p text, whose words are separated by white space, into lines that end before column @p width. They stand behind
/// @p indent blanks, but for the first, which continues a line that is there already. A word that is too wide stands
/// alone, uncut. Every line is ended, also the last.
KRCOMMON_API std::string wrapBehind(const std::string& text, std::size_t indent, std::size_t width);

/// The texts between commas and line ends, without blanks around them; empty ones are left out.
std::vector<std::string> splitList(const std::string& text);

} // namespace pwr::usage
