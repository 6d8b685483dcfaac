#pragma once

#include "tarnwell/command_option.h"

#include <span>

namespace tarnwell {

std::span<const CommandOption> verifyOptions();

/// Reads a saved collection to its end and says whether it is whole, and if not what is wrong where.
int runVerify(const Settings& settings);

} // namespace tarnwell
