#pragma once

#include "tarnwell/command_option.h"

#include <span>

namespace tarnwell {

std::span<const CommandOption> manualOptions();

/// Writes the manual page to the standard output. Gives the program's exit code.
int runManual(const Settings& settings);

} // namespace tarnwell
