#pragma once

#include "tarnwell/command_option.h"

#include <span>

namespace tarnwell {

std::span<const CommandOption> doctorOptions();

/// Lists the features: what this machine offers and, for what it does not, the reason and the fix. When asked to,
/// writes the bundle of the machine.
int runDoctor(const Settings& settings);

} // namespace tarnwell
