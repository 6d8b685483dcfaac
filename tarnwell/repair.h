#pragma once

#include "tarnwell/command_option.h"

#include <span>

namespace tarnwell {

std::span<const CommandOption> repairOptions();

/// Copies what is intact of a saved collection into a new, closed file, and says what was left out.
int runRepair(const Settings& settings);

} // namespace tarnwell
