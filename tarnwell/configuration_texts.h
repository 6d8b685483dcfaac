#pragma once

#include <string>
#include <utility>
#include <vector>

namespace tarnwell {

/// Name and text of each file of a configuration.
using ConfigurationTexts = std::vector<std::pair<std::string, std::string>>;

/// What the names of a saved collection's hardware descriptions begin with; all others are output configurations.
/// No output configuration is named so, because its name is that of a file without its folders.
inline constexpr const char* kHardwareTextPrefix = "hardware/";

/// The shipped files config/KIND/*.cfg beside the library, in the order of their names; none is a complaint, which
/// ends in @p consequence.
std::vector<std::string> shippedFiles(const std::string& libraryFolder, const std::string& kind,
                                      const std::string& consequence);

/// Name and text of a file. A file that cannot be read has none: its parser complains of it.
std::pair<std::string, std::string> namedText(const std::string& path);

} // namespace tarnwell
