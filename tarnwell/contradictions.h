#pragma once

#include <string>

namespace tarnwell {

struct ReadArguments;
class ProgramOptions;
struct Settings;

/// What does not go together in a command line, as a sentence; "" when all does.
std::string contradiction(const ReadArguments& read, const ProgramOptions& options, const Settings& settings);

} // namespace tarnwell
