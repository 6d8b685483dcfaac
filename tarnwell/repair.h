#pragma once

namespace CLI {
class App;
}

namespace tarnwell {

struct Settings;

void declareRepair(CLI::App& options, Settings& settings);

/// Copies what is intact of a saved collection into a new, closed file, and says what was left out.
int runRepair(const Settings& settings);

} // namespace tarnwell
