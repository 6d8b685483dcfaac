#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "common/config/statement.h"
#include "common/export.h"

namespace pwr {

/// Takes one statement; returns 0, or something else after it has said what is wrong, in a log message of its
/// own or in `problem`, which ends up behind the place in the message about the line. May throw.
using StatementHandler = std::function<int(const Statement& statement, std::string& problem)>;

/// Reads configuration files (or one text that did not come from a file, under a name) statement by statement.
/// A line that cannot be split, that its handler refuses or whose handler throws is reported at ERROR, with its
/// text and its place (" (part.cfg:12)"), and the lines after it are still read: one run names all bad lines.
/// Results: 0 when every line was good, else -1, after a report that names the file.
KRCOMMON_API int readConfigFile(const std::string& path, const StatementHandler& handler);
KRCOMMON_API int readConfigText(const std::string& name, std::string_view text,
                                const StatementHandler& handler);

/// Appends all bytes of a file; false when it cannot be opened or read.
KRCOMMON_API bool readConfigFileText(const std::string& path, std::string& text);

} // namespace pwr
