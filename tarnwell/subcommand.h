#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace tarnwell {

struct Settings;

/// A word behind the program's name that asks for something else than a collection. Each has a file of its own and a
/// row in the table of all.
struct Subcommand {
    const char* name;
    const char* description;
    void (*declare)(CLI::App& options, Settings& settings); ///< its own options and arguments
    int (*run)(const Settings& settings);                   ///< gives the program's exit code
};

const std::vector<Subcommand>& subcommands();

/// The row of a word that stands in the table.
const Subcommand& subcommandOf(const std::string& name);

} // namespace tarnwell
