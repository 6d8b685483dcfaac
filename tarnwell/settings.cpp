#include "tarnwell/settings.h"

#include "tarnwell/command_options.h"
#include "tarnwell/exit_code.h"
#include "tarnwell/subcommand.h"
#include "tarnwell/version.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <sstream>

namespace tarnwell {
namespace {

constexpr const char* kDescription =
    "Collects power, performance and thermal counters of this machine, prints summary tables and saves\n"
    "the collection. Collects for --time seconds, until Ctrl-C, or while COMMAND runs.";

constexpr const char* kFooter =
    "Also:\n"
    "  tarnwell [options] -- CMD     collect while CMD runs\n"
    "  tarnwell --input FILE         report from a saved collection\n"
    "  tarnwell --feature            what this machine offers (as tarnwell doctor)\n"
    "  tarnwell SUBCOMMAND --help    the options of a subcommand\n"
    "\n"
    "Exit codes: 0 done, 1 failed, 2 usage, 3 partial (something asked for is missing),\n"
    "4 the saved collection is damaged or was not closed (the report says what is missing),\n"
    "127 COMMAND could not be started; a non-zero code of COMMAND wins.";

/// "--feature" with nothing behind it asks for the list; the option parser would call it an error, so it
/// is taken out. True when there was one.
bool takeFeatureQuestion(std::vector<std::string>& arguments) {
    std::vector<std::string> others;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const bool valueFollows = i + 1 < arguments.size() && arguments[i + 1].rfind('-', 0) != 0;
        if (arguments[i] != "--feature" || valueFollows) {
            others.push_back(arguments[i]);
        }
    }
    const bool isQuestion = others.size() < arguments.size();
    arguments = std::move(others);
    return isQuestion;
}

/// An option that names something: an empty text is a variable that was not set, and results would silently go
/// nowhere.
CLI::Option* declareName(CLI::App& app, const std::string& option, std::string& target,
                         const std::string& expected, const std::string& description) {
    const auto read = [&target, option, expected](const std::string& text) {
        if (text.empty()) {
            throw CLI::ValidationError(option + " \"\"", "give " + expected);
        }
        target = text;
    };
    return app.add_option_function<std::string>(option, read, description);
}

void declareOptions(CLI::App& app, Settings& settings) {
    app.description(kDescription);
    app.footer(kFooter);
    app.set_version_flag("--version", std::string("tarnwell ") + kVersion);
    app.add_option("--feature", settings.features,
                   "collect (or report) this feature, or group of features, only; repeat for more; without "
                   "NAME: list")
        ->type_name("NAME")
        ->allow_extra_args(false);
    declareInterval(app, settings, "milliseconds between samples (1 to 60000; default 100)");
    declareTime(app, settings, "seconds to collect; with a command: at most so long");
    declareName(app, "--output", settings.outputPrefix, "what the names of the result files start with",
                "also write PREFIX.txt and one PREFIX_*.csv for each table")
        ->type_name("PREFIX");
    app.add_option("--output-config", settings.outputConfig,
                   "output configuration instead of the shipped (or saved) files")
        ->type_name("FILE")
        ->allow_extra_args(false);
    app.add_option("--add-output-config", settings.moreOutputConfig,
                   "output configuration on top of those files; repeat for more")
        ->type_name("FILE")
        ->allow_extra_args(false);
    declareHardwareConfig(app, settings);
    app.add_flag("--max-detail", settings.maxDetail,
                 "collect what is only wanted at the highest detail, too");
    declareMachine(app, settings, "read the machine from this root folder or captured bundle");
    declareEndpoints(app, settings);
    auto* const save = declareName(app, "--save", settings.saveFile, "the name of the file to save to",
                                   "save the collection here instead of in PREFIX.twc or tarnwell-TIME.twc")
                           ->type_name("FILE");
    app.add_flag_callback(
           "--no-save", [&settings] { settings.saves = false; }, "do not save the collection")
        ->excludes(save);
    app.add_flag("--overwrite", settings.overwrite, "replace a file that the collection is to be saved in");
    declareName(app, "--input", settings.inputFile, "the saved collection to report from",
                "collect nothing: report from this saved collection")
        ->type_name("FILE");
    app.add_flag("--quiet", settings.quiet, "no progress line, no word on the saved file");
}

void declareSubcommands(CLI::App& app, Settings& settings) {
    for (const Subcommand& row : subcommands()) {
        CLI::App* const own = app.add_subcommand(row.name, row.description);
        row.declare(*own, settings);
        own->final_callback([&settings, &row] { settings.subcommand = &row; });
    }
    app.require_subcommand(0, 1);
}

/// Options that say how to collect, where nothing is collected.
std::string uselessOption(const CLI::App& app, const Settings& settings) {
    static constexpr std::array kOnlyCollecting = {
        "--interval",  "--time",       "--machine",         "--save",
        "--overwrite", "--max-detail", "--hardware-config", "--endpoints"};
    for (const char* option : kOnlyCollecting) {
        if (app.count(option) > 0) {
            return option;
        }
    }
    return settings.command.empty() ? std::string() : "a command behind --";
}

/// What does not go together, as a sentence; "" when all does.
std::string contradiction(const CLI::App& app, const Settings& settings, bool endsWithSeparator,
                          bool asksForFeatures) {
    if (endsWithSeparator && settings.command.empty()) {
        return "no command behind --";
    }
    if (settings.subcommand != nullptr && app.count("--input") > 0) {
        return std::string("--input reports from a saved collection, and does not go with ") +
               settings.subcommand->name;
    }
    if (settings.subcommand != nullptr) {
        return settings.command.empty() ? std::string()
                                        : std::string(settings.subcommand->name) +
                                              " runs no command; leave out \"--\" and what follows";
    }
    if (settings.inputFile.empty()) {
        return {};
    }
    if (asksForFeatures) {
        return "--feature without a name lists what this machine offers, which --input does not ask";
    }
    const std::string useless = uselessOption(app, settings);
    return useless.empty() ? std::string()
                           : useless + ": makes no sense with --input, which collects nothing";
}

} // namespace

ParsedCommandLine parseCommandLine(const std::vector<std::string>& arguments) {
    ParsedCommandLine parsed;
    Settings settings;
    settings.arguments = arguments;
    const auto separator = std::find(arguments.begin(), arguments.end(), "--");
    std::vector<std::string> own(arguments.begin(), separator);
    if (separator != arguments.end()) {
        settings.command.assign(separator + 1, arguments.end());
    }

    CLI::App app("", "tarnwell");
    declareOptions(app, settings);
    declareSubcommands(app, settings);
    const bool asksForFeatures = takeFeatureQuestion(own);
    try {
        std::vector<std::string> reversed(own.rbegin(), own.rend());
        app.parse(reversed);
    } catch (const CLI::ParseError& error) {
        std::ostringstream out;
        std::ostringstream err;
        const int code = app.exit(error, out, err);
        parsed.output = out.str();
        parsed.error = err.str().empty() ? std::string() : "tarnwell: " + err.str();
        parsed.exitCode = code == 0 ? 0 : toInt(ExitCode::USAGE);
        return parsed;
    }

    if (asksForFeatures && settings.inputFile.empty() && settings.subcommand == nullptr) {
        settings.subcommand = &subcommandOf("doctor");
    }
    const std::string reason = contradiction(app, settings, separator != arguments.end(), asksForFeatures);
    if (!reason.empty()) {
        parsed.error = "tarnwell: " + reason + "\n";
        parsed.exitCode = toInt(ExitCode::USAGE);
        return parsed;
    }
    parsed.settings = std::move(settings);
    return parsed;
}

} // namespace tarnwell
