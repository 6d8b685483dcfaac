#pragma once

#include "tarnwell/command_option.h"

#include <span>

namespace tarnwell {

std::span<const CommandOption> exportOptions();

/// Writes every value of a saved collection as it was read, one a line, as CSV (RFC 4180) or as one JSON object each.
int runExport(const Settings& settings);

} // namespace tarnwell
