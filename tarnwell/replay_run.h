#pragma once

namespace tarnwell {

struct Settings;

/// Reports from a saved collection what the collecting run reported. Gives the program's exit code.
int replaySaved(const Settings& settings);

} // namespace tarnwell
