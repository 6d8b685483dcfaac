#include "tarnwell/completion_model.h"
#include "tarnwell/completion_scripts.h"

namespace tarnwell {
namespace {

// "@...@" are filled in.
constexpr const char* kScript = R"(# fish completion for tarnwell; made by: tarnwell completions fish

function __tarnwell_runs_command
    contains -- -- (commandline -opc)
end

function __tarnwell_collects
    not __tarnwell_runs_command; and not __fish_seen_subcommand_from @names@
end

function __tarnwell_command
    set -l words (commandline -opc)
    set -e words[1..(contains -i -- -- $words)]
    if set -q words[1]
        complete -C (string join ' ' -- (string escape -- $words) (commandline -ct))
    else
        __fish_complete_command
    end
end

complete -c tarnwell -f
complete -c tarnwell -n __tarnwell_runs_command -a '(__tarnwell_command)'
)";

std::string quoted(const std::string& text) {
    return "'" + replaced(replaced(text, "\\", "\\\\"), "'", "\\'") + "'";
}

std::string valuesOf(const KnownOption& option) {
    switch (proposalOf(option)) {
    case Proposal::FILES: return " -F";
    case Proposal::WORDS: return " -x -a " + quoted(joined(option.text.getValidArgs(), " "));
    case Proposal::FEATURES: return " -x -a " + quoted("(" + std::string(kFeatureLister) + ")");
    case Proposal::COMMANDS: return " -x -a " + quoted("(__fish_complete_command)");
    case Proposal::NOTHING: break;
    }
    return " -x";
}

std::string linesOf(const std::vector<KnownOption>& options, const std::string& condition) {
    using Attribute = pwr::usage::Option::Attribute;
    std::string lines;
    for (const KnownOption& option : options) {
        const std::string line = "complete -c tarnwell -n " + condition;
        if (option.isArgument()) {
            lines += line + valuesOf(option) + "\n";
            continue;
        }
        const std::string letter = option.text.getAttribute(Attribute::ABBREVIATION);
        const bool takesFile = option.takesValue() && proposalOf(option) == Proposal::FILES;
        lines += line + " -l " + option.text.getNormalizedName() +
                 (letter.empty() ? "" : " -s " + letter.substr(1)) + (takesFile ? " -r" : "") +
                 (option.takesValue() ? valuesOf(option) : "") + " -d " +
                 quoted(shortText(option.text.getAttribute(Attribute::DESCRIPTION))) + "\n";
    }
    return lines;
}

} // namespace

std::string fishCompletions(const ProgramOptions& options) {
    std::vector<std::string> names;
    std::string lines;
    for (const Subcommand& subcommand : subcommands()) {
        names.emplace_back(subcommand.name);
        lines += std::string("complete -c tarnwell -n __tarnwell_collects -a ") + subcommand.name + " -d " +
                 quoted(subcommand.description) + "\n";
    }
    lines += linesOf(options.main(), "__tarnwell_collects");
    for (const Subcommand& subcommand : subcommands()) {
        const std::string condition = std::string("'__fish_seen_subcommand_from ") + subcommand.name + "'";
        lines += linesOf(options.of(subcommand), condition);
    }
    return replaced(kScript, "@names@", joined(names, " ")) + lines;
}

} // namespace tarnwell
