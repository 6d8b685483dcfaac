#pragma once

namespace CLI {
class App;
}

namespace tarnwell {

struct Settings;

void declareVerify(CLI::App& options, Settings& settings);

/// Reads a saved collection to its end and says whether it is whole, and if not what is wrong where.
int runVerify(const Settings& settings);

} // namespace tarnwell
