#pragma once

namespace tarnwell {

struct Settings;

/// Does what the user asked for and gives the program's exit code.
int run(const Settings& settings);

} // namespace tarnwell
