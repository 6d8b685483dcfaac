#pragma once

namespace CLI {
class App;
}

namespace tarnwell {

struct Settings;

void declareDoctor(CLI::App& options, Settings& settings);

/// Lists the features: what this machine offers and, for what it does not, the reason and the fix. When asked to,
/// writes the bundle of the machine.
int runDoctor(const Settings& settings);

} // namespace tarnwell
