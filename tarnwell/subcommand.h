#pragma once

#include "tarnwell/command_option.h"

#include <span>
#include <string>
#include <vector>

namespace tarnwell {

/// A word behind the program's name that asks for something else than a collection. Each has a file of its own and a
/// row in the table of all.
struct Subcommand {
    const char* name;
    const char* description;
    std::span<const CommandOption> (*options)(); ///< its own options and arguments
    int (*run)(const Settings& settings);        ///< gives the program's exit code
};

const std::vector<Subcommand>& subcommands();

/// The row of a word that stands in the table.
const Subcommand& subcommandOf(const std::string& name);

/// Null for a word that does not.
const Subcommand* findSubcommand(const std::string& name);

} // namespace tarnwell
