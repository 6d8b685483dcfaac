#pragma once

#include "tarnwell/command_option.h"

#include <span>

namespace tarnwell {

std::span<const CommandOption> checkConfigOptions();

/// Checks configuration files of both languages, which it tells apart by their statements, and says everything that is
/// wrong with all of them: what breaks the grammar, what metrics and collectors cannot understand, and what hardly says
/// what was meant (a warning). Hardware descriptions are read behind the shipped ones, as a collection does.
/// 0; or 1 when there was an error.
int runCheckConfig(const Settings& settings);

} // namespace tarnwell
