#pragma once

#include "tarnwell/program_options.h"

#include <string>
#include <vector>

namespace tarnwell {

/// What a shell proposes as the value of an option or argument.
enum class Proposal { NOTHING, FILES, WORDS, FEATURES, COMMANDS };
Proposal proposalOf(const KnownOption& option);

/// The names of an option as typed: one or two.
std::vector<std::string> namesOf(const KnownOption& option);

/// The first statement of a description: lists of proposals have short lines.
std::string shortText(const std::string& description);

/// @p texts joined by @p separator.
std::string joined(const std::vector<std::string>& texts, const char* separator);

/// Every @p what in @p text replaced.
std::string replaced(std::string text, const std::string& what, const std::string& by);

/// Shell words that print the names of the machine's features, a line each.
inline constexpr const char* kFeatureLister =
    R"(tarnwell doctor 2>/dev/null | sed -n 's/^  \([^ ][^ ]*\) .*/\1/p')";

} // namespace tarnwell
