#pragma once

#include <string>

namespace pwr {
class MachineFiles;
}

namespace tarnwell {

struct Settings;

/// Records the files that the shipped collectors and the topology read, at every tick of the interval for
/// the given time (one second when none was given), and writes them as a bundle. 0; or 1 with a reason.
int captureMachine(const pwr::MachineFiles& machine, const Settings& settings, std::string& reason);

} // namespace tarnwell
