#pragma once

#include "common/usage/usage_text.h"
#include "tarnwell/command_option.h"
#include "tarnwell/subcommand.h"

#include <map>
#include <string>
#include <vector>

namespace tarnwell {

/// All that may stand on the command line: the library's table of options with the rows that only this program has,
/// and those of the subcommands. Parser, help, JSON, completions and the manual are made from it.
class ProgramOptions {
public:
    ProgramOptions();

    const pwr::usage::UsageText& usage() const { return m_usage; }
    const std::vector<KnownOption>& main() const { return m_main; }
    /// With the general ones that every subcommand takes.
    const std::vector<KnownOption>& of(const Subcommand& subcommand) const;
    /// Null for a name that none of @p options has.
    static const KnownOption* find(const std::vector<KnownOption>& options, const std::string& name);
    bool isOfSection(pwr::usage::Section section, const std::string& name) const;

private:
    pwr::usage::UsageText m_usage;
    std::vector<KnownOption> m_main;
    std::map<std::string, std::vector<KnownOption>> m_bySubcommand;
};

} // namespace tarnwell
