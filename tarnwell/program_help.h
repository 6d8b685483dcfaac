#pragma once

#include "tarnwell/program_options.h"

#include <string>

namespace tarnwell {

/// What --help prints, as wide as the console.
std::string programHelp(const ProgramOptions& options);
std::string subcommandHelp(const ProgramOptions& options, const Subcommand& subcommand);

/// All options as one JSON object; those of subcommands under "subcommands".
std::string optionsAsJson(const ProgramOptions& options);

/// "tarnwell repair FILE OUT", and " [options]" when there are any.
std::string subcommandLine(const ProgramOptions& options, const Subcommand& subcommand);

} // namespace tarnwell
