#pragma once

#include "tarnwell/command_option.h"

#include <span>

namespace tarnwell {

std::span<const CommandOption> infoOptions();

/// Prints what a saved collection says of itself, as a text or as JSON. Reads the few blocks that hold it; only a file
/// that was not closed is read as a whole, because nothing else knows how much is in it. Gives the program's exit code.
int runInfo(const Settings& settings);

} // namespace tarnwell
