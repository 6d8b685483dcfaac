#pragma once

#include "tarnwell/command_option.h"

#include <span>

namespace tarnwell {

std::span<const CommandOption> completionsOptions();

/// Writes the completion script of a shell to the standard output. Gives the program's exit code.
int runCompletions(const Settings& settings);

} // namespace tarnwell
