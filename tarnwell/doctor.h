#pragma once

#include <string>

namespace pwr {
class MachineFiles;
}

namespace tarnwell {

class FeatureList;
class PluginSet;
struct Settings;

/// The list of features as a text: what this machine offers and, for what it does not, the reason and the fix.
std::string doctorReport(const FeatureList& features, const PluginSet& plugins);

/// Prints the list and, when asked to, writes the bundle of the machine. Gives the program's exit code.
int runDoctor(const Settings& settings, const FeatureList& features, const PluginSet& plugins,
              const pwr::MachineFiles& machine);

} // namespace tarnwell
