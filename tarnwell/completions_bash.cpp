#include "tarnwell/completion_model.h"
#include "tarnwell/completion_scripts.h"

namespace tarnwell {
namespace {

// "@...@" are filled in. In bash "=" is a word of its own.
constexpr const char* kScript = R"(# bash completion for tarnwell; made by: tarnwell completions bash

_tarnwell_files() {
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -f -- "$1")
}

_tarnwell_words() {
    mapfile -t COMPREPLY < <(compgen -W "$2" -- "$1")
}

_tarnwell() {
    local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} scope= i
    if [[ $word == "=" ]]; then
        word=
    elif [[ $previous == "=" ]]; then
        previous=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    COMPREPLY=()
    for ((i = 1; i < COMP_CWORD; ++i)); do
        case $scope:${COMP_WORDS[i]} in
        *:--)
            scope=--
            break
            ;;
        @valued@)
            [[ ${COMP_WORDS[i + 1]} != "=" ]] || i=$((i + 1))
            i=$((i + 1))
            ;;
        @subcommands@)
            scope=${COMP_WORDS[i]}
            ;;
        esac
    done
    if [[ $scope == -- ]]; then
        if [[ $previous == -- ]]; then
            mapfile -t COMPREPLY < <(compgen -c -- "$word")
        else
            _tarnwell_files "$word"
        fi
        return
    fi
    case $scope:$previous in
@values@    esac
    case $scope in
@scopes@    esac
}

complete -F _tarnwell tarnwell
)";

/// What is done to propose values; "" ends it.
std::string proposing(const KnownOption& option) {
    switch (proposalOf(option)) {
    case Proposal::FILES: return "_tarnwell_files \"$word\"";
    case Proposal::WORDS:
        return "_tarnwell_words \"$word\" '" + joined(option.text.getValidArgs(), " ") + "'";
    case Proposal::FEATURES: return "_tarnwell_words \"$word\" \"$(" + std::string(kFeatureLister) + ")\"";
    case Proposal::COMMANDS: return "mapfile -t COMPREPLY < <(compgen -c -- \"$word\")";
    case Proposal::NOTHING: break;
    }
    return {};
}

std::string valueCases(const std::string& scope, const std::vector<KnownOption>& options) {
    std::string text;
    for (const KnownOption& option : options) {
        if (option.isArgument() || !option.takesValue()) {
            continue;
        }
        std::vector<std::string> patterns;
        for (const std::string& name : namesOf(option)) {
            patterns.push_back(scope + ":" + name);
        }
        const std::string action = proposing(option);
        text += "    " + joined(patterns, " | ") + ")\n" +
                (action.empty() ? "" : "        " + action + "\n") + "        return\n        ;;\n";
    }
    return text;
}

/// The words of a scope: its options and what may stand beside them.
std::string scopeCase(const std::string& scope, const std::vector<KnownOption>& options,
                      std::vector<std::string> words) {
    bool takesFiles = false;
    for (const KnownOption& option : options) {
        if (!option.isArgument()) {
            words.push_back(option.text.getName());
        } else if (proposalOf(option) == Proposal::FILES) {
            takesFiles = true;
        } else {
            words.insert(words.end(), option.text.getValidArgs().begin(), option.text.getValidArgs().end());
        }
    }
    const std::string proposal = "_tarnwell_words \"$word\" '" + joined(words, " ") + "'\n";
    return "    '" + scope + "')\n" +
           (takesFiles ? "        if [[ $word == -* ]]; then\n            " + proposal +
                             "        else\n            _tarnwell_files \"$word\"\n        fi\n"
                       : "        " + proposal) +
           "        ;;\n";
}

} // namespace

std::string bashCompletions(const ProgramOptions& options) {
    std::vector<std::string> valued;
    for (const KnownOption& option : options.main()) {
        for (const std::string& name : option.takesValue() ? namesOf(option) : std::vector<std::string>()) {
            valued.push_back(":" + name);
        }
    }
    std::vector<std::string> names;
    std::vector<std::string> entries;
    std::string values = valueCases("", options.main());
    std::string scopes;
    for (const Subcommand& subcommand : subcommands()) {
        names.emplace_back(subcommand.name);
        entries.push_back(std::string(":") + subcommand.name);
        values += valueCases(subcommand.name, options.of(subcommand));
        scopes += scopeCase(subcommand.name, options.of(subcommand), {});
    }
    std::string script = kScript;
    script = replaced(script, "@valued@", joined(valued, " | "));
    script = replaced(script, "@subcommands@", joined(entries, " | "));
    script = replaced(script, "@values@", values);
    return replaced(script, "@scopes@", scopeCase("", options.main(), names) + scopes);
}

} // namespace tarnwell
