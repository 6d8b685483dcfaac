#pragma once

namespace tarnwell {

struct Settings;

/// Prints "family.model.stepping" of the machine's processor. Gives the program's exit code.
int printFms(const Settings& settings);

} // namespace tarnwell
