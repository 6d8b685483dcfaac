#include "tarnwell/settings.h"

#include "tarnwell/argument_reader.h"
#include "tarnwell/contradictions.h"
#include "tarnwell/exit_code.h"
#include "tarnwell/program_help.h"
#include "tarnwell/version.h"

#include <array>
#include <utility>

namespace tarnwell {
namespace {

struct Display {
    const char* option;
    std::string (*text)(const ProgramOptions& options);
};

/// Options that only ask for a text.
constexpr std::array kDisplays = {
    Display{"--version", [](const ProgramOptions&) { return std::string("tarnwell ") + kVersion + "\n"; }},
    Display{"--help-json", optionsAsJson},
};

ParsedCommandLine usageError(const std::string& text, const Subcommand* subcommand) {
    ParsedCommandLine parsed;
    parsed.exitCode = toInt(ExitCode::USAGE);
    parsed.error = "tarnwell: " + text + "\nSee tarnwell " +
                   (subcommand == nullptr ? "" : std::string(subcommand->name) + " ") + "--help\n";
    return parsed;
}

ParsedCommandLine display(const std::string& text) {
    ParsedCommandLine parsed;
    parsed.output = text;
    return parsed;
}

/// Gives what is wrong with a value, or "".
std::string applyAll(const ReadArguments& read, Settings& settings) {
    for (const ReadArguments::Given& given : read.given) {
        if (given.option->apply == nullptr) {
            continue;
        }
        try {
            given.option->apply(settings, given.value);
        } catch (const BadValue& bad) {
            return given.option->text.getName() + " " + (given.value.empty() ? "\"\"" : given.value) +
                   ": give " + bad.expected;
        }
    }
    return {};
}

} // namespace

ParsedCommandLine parseCommandLine(const std::vector<std::string>& arguments) {
    const ProgramOptions options;
    const ReadArguments read = ArgumentReader(options).read(arguments);
    if (read.asksForHelp) {
        return display(read.subcommand == nullptr ? programHelp(options)
                                                  : subcommandHelp(options, *read.subcommand));
    }
    if (!read.error.empty()) {
        return usageError(read.error, read.subcommand);
    }
    for (const Display& row : kDisplays) {
        if (read.has(row.option)) {
            return display(row.text(options));
        }
    }
    Settings settings;
    settings.arguments = arguments;
    settings.subcommand = read.subcommand;
    if (const std::string fault = applyAll(read, settings); !fault.empty()) {
        return usageError(fault, read.subcommand);
    }
    if (read.hasSeparator) {
        settings.command = read.command;
    }
    if (const std::string fault = contradiction(read, options, settings); !fault.empty()) {
        return usageError(fault, read.subcommand);
    }
    const auto& forms = settings.resultForms;
    settings.reports = settings.reports && (forms.empty() || forms.front() != "none");
    ParsedCommandLine parsed;
    parsed.settings = std::move(settings);
    return parsed;
}

} // namespace tarnwell
