#include "tarnwell/completion_model.h"
#include "tarnwell/completion_scripts.h"

namespace tarnwell {
namespace {

// "@...@" are filled in.
constexpr const char* kScript = R"zsh(#compdef tarnwell
# zsh completion for tarnwell; made by: tarnwell completions zsh

_tarnwell_features() {
    local -a features
    features=(${(f)"$(@lister@)"})
    compadd -a features
}

_tarnwell_subcommands() {
    local -a rows
    rows=(
@rows@    )
    _describe subcommand rows
}

_tarnwell() {
    local curcontext="$curcontext" state line
    typeset -A opt_args
    local -i dashes=${words[(i)--]}
    if (( dashes < CURRENT )); then
        words=("${(@)words[dashes + 1, -1]}")
        (( CURRENT -= dashes ))
        _normal
        return
    fi
    _arguments -C -s \
@main@        '1:subcommand:_tarnwell_subcommands' \
        '*:: :->rest' && return
    [[ $state == rest ]] || return
    case $words[1] in
@scopes@    esac
}

_tarnwell "$@"
)zsh";

/// Text for a single-quoted word of _arguments.
std::string quoted(const std::string& text) {
    std::string out;
    for (const char c : text) {
        if (c == '[' || c == ']' || c == ':' || c == '\\') {
            out += '\\';
        }
        out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return out;
}

std::string actionOf(const KnownOption& option) {
    switch (proposalOf(option)) {
    case Proposal::FILES: return "_files";
    case Proposal::WORDS: return "(" + joined(option.text.getValidArgs(), " ") + ")";
    case Proposal::FEATURES: return "_tarnwell_features";
    case Proposal::COMMANDS: return "_command_names -e";
    case Proposal::NOTHING: break;
    }
    return {};
}

std::string argumentsOf(const std::vector<KnownOption>& options, const std::string& indent) {
    std::string lines;
    for (const KnownOption& option : options) {
        const std::string action = actionOf(option);
        if (option.isArgument()) {
            lines += indent + "'" + (option.mayRepeat ? "*" : "") + ":" + quoted(option.text.getName()) +
                     ":" + action + "' \\\n";
            continue;
        }
        const auto names = namesOf(option);
        const std::string text =
            quoted(shortText(option.text.getAttribute(pwr::usage::Option::Attribute::DESCRIPTION)));
        const std::string arg = option.text.getAttribute(pwr::usage::Option::Attribute::ARG);
        const std::string ending =
            "[" + text + "]" + (arg.empty() ? "" : ":" + quoted(arg) + ":" + action) + "' \\\n";
        for (const std::string& name : names) {
            const std::string others = "(" + joined(names, " ") + ")";
            lines += indent + "'" + (option.mayRepeat ? std::string("*") : others) + name + ending;
        }
    }
    return lines;
}

} // namespace

std::string zshCompletions(const ProgramOptions& options) {
    std::string rows;
    std::string scopes;
    for (const Subcommand& subcommand : subcommands()) {
        rows += std::string("        '") + subcommand.name + ":" + quoted(subcommand.description) + "'\n";
        std::string arguments = argumentsOf(options.of(subcommand), "            ");
        arguments.resize(arguments.size() - 3); // the last line goes on nowhere
        scopes += std::string("    ") + subcommand.name + ")\n        _arguments -s \\\n" + arguments +
                  "\n        ;;\n";
    }
    std::string script = replaced(kScript, "@lister@", kFeatureLister);
    script = replaced(script, "@rows@", rows);
    script = replaced(script, "@main@", argumentsOf(options.main(), "        "));
    return replaced(script, "@scopes@", scopes);
}

} // namespace tarnwell
