#pragma once

namespace CLI {
class App;
}

namespace tarnwell {

struct Settings;

// Options that several subcommands take. Values out of range throw what the option parser reports.

void declareInterval(CLI::App& options, Settings& settings, const char* description);
void declareTime(CLI::App& options, Settings& settings, const char* description);
void declareMachine(CLI::App& options, Settings& settings, const char* description);
void declareEndpoints(CLI::App& options, Settings& settings);
void declareHardwareConfig(CLI::App& options, Settings& settings);
/// The saved collection that a subcommand is about, as its first argument.
void declareSavedFile(CLI::App& options, Settings& settings);

} // namespace tarnwell
