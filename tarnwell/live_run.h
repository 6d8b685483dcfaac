#pragma once

namespace tarnwell {

struct Settings;

/// Collects, saves and reports. Gives the program's exit code.
int collectLive(const Settings& settings);

} // namespace tarnwell
