#pragma once

#include "common/machine_files.h"

#include <string>

namespace tarnwell {

/// The machine's logical processors as the text that a topology is built from: six numbers for each
/// (thread, package, core, core type, die, module; -1 where there is none). Dies are named only where
/// a package has several, modules only where several cores share one. Offline processors are not in it.
/// When neither files nor system know anything, a flat list (or one processor) stands in.
std::string topologyText(const pwr::MachineFiles& machine, bool isLive);

} // namespace tarnwell
