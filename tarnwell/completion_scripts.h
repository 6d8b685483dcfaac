#pragma once

#include <string>

namespace tarnwell {

class ProgramOptions;

// A shell's own script for completing the program's command line, each in a file of its own.

std::string bashCompletions(const ProgramOptions& options);
std::string zshCompletions(const ProgramOptions& options);
std::string fishCompletions(const ProgramOptions& options);

} // namespace tarnwell
