#pragma once

#include <string>
#include <vector>

namespace pwr {
class MachineFiles;
}

namespace tarnwell {

struct Settings;

/// Records the files that the topology and the machine's description are read from, and @p files (patterns), at every tick of the interval for
/// the given time (one second when none was given), and writes them as a bundle. 0; or 1 with a reason.
int captureMachine(const pwr::MachineFiles& machine, const Settings& settings,
                   const std::vector<std::string>& files, std::string& reason);

} // namespace tarnwell
