#include "tarnwell/settings.h"

#include "tarnwell/exit_code.h"
#include "tarnwell/version.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <sstream>

namespace tarnwell {
namespace {

// The saved interval has 16 bits; below a millisecond the reads would cost more than they show.
constexpr std::uint32_t kShortestIntervalMs = 1;
constexpr std::uint32_t kLongestIntervalMs = 60000;
constexpr double kShortestSeconds = 0.001;
constexpr double kLongestSeconds = 366.0 * 24 * 3600;

constexpr const char* kDescription =
    "Collects power, performance and thermal counters of this machine and prints summary tables.\n"
    "Collects for --time seconds, until Ctrl-C, or while COMMAND runs.";

constexpr const char* kFooter =
    "Commands:\n"
    "  tarnwell doctor             say what this machine offers, and why not the rest\n"
    "  tarnwell --feature          the same\n"
    "  tarnwell info FILE          say what a saved collection holds\n"
    "  tarnwell [options] -- CMD   collect while CMD runs\n"
    "\n"
    "Exit codes: 0 done, 1 failed, 2 usage, 3 partial (something asked for is missing),\n"
    "127 COMMAND could not be started; a non-zero code of COMMAND wins.";

struct RawOptions {
    std::optional<std::string> interval;
    std::optional<std::string> time;
    std::optional<std::string> outputPrefix;
};

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

std::string rangeError(const char* option, const std::string& value, const std::string& expected) {
    return "tarnwell: " + std::string(option) + " " + (value.empty() ? "\"\"" : value) + ": give " +
           expected + "\n";
}

/// Empty on success, else what is wrong.
std::string readInterval(const std::string& text, std::uint32_t& out) {
    std::uint32_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool whole = error == std::errc() && end == text.data() + text.size();
    if (!whole || value < kShortestIntervalMs || value > kLongestIntervalMs) {
        return rangeError("--interval", text, "a whole number of milliseconds from 1 to 60000");
    }
    out = value;
    return {};
}

std::string readSeconds(const std::string& text, std::optional<double>& out) {
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool whole = error == std::errc() && end == text.data() + text.size() && std::isfinite(value);
    if (!whole || value < kShortestSeconds || value > kLongestSeconds) {
        return rangeError("--time", text, "a number of seconds from 0.001 to 31622400 (366 days)");
    }
    out = value;
    return {};
}

void declareOptions(CLI::App& app, Settings& settings, RawOptions& raw) {
    app.description(kDescription);
    app.footer(kFooter);
    app.set_version_flag("--version", std::string("tarnwell ") + kVersion);
    app.add_option("--feature", settings.features,
                   "collect this feature only; repeat for more; without NAME: list")
        ->type_name("NAME")
        ->allow_extra_args(false);
    app.add_option("--interval", raw.interval, "milliseconds between samples (1 to 60000; default 100)")
        ->type_name("MS");
    app.add_option("--time", raw.time, "seconds to collect; with a command: at most so long")->type_name("S");
    app.add_option("--output", raw.outputPrefix, "also write PREFIX.txt and one PREFIX_*.csv for each table")
        ->type_name("PREFIX");
    app.add_option("--output-config", settings.outputConfig,
                   "output configuration instead of the shipped files")
        ->type_name("FILE")
        ->allow_extra_args(false);
    app.add_option("--machine", settings.machine, "read the machine from this root folder or captured bundle")
        ->type_name("PLACE");
    app.add_flag("--quiet", settings.quiet, "no progress line");
}

std::string checkedValues(const RawOptions& raw, Settings& settings) {
    std::string error;
    if (raw.interval) {
        error = readInterval(*raw.interval, settings.intervalMs);
    }
    if (error.empty() && raw.time) {
        error = readSeconds(*raw.time, settings.seconds);
    }
    // An empty text is a variable that was not set: results would silently go nowhere.
    if (error.empty() && raw.outputPrefix && raw.outputPrefix->empty()) {
        error = rangeError("--output", "", "what the names of the result files start with");
    }
    settings.outputPrefix = raw.outputPrefix.value_or("");
    return error;
}

} // namespace

ParsedCommandLine parseCommandLine(const std::vector<std::string>& arguments) {
    ParsedCommandLine parsed;
    Settings settings;
    RawOptions raw;
    settings.arguments = arguments;
    const auto separator = std::find(arguments.begin(), arguments.end(), "--");
    std::vector<std::string> own(arguments.begin(), separator);
    if (separator != arguments.end()) {
        settings.command.assign(separator + 1, arguments.end());
    }

    CLI::App app("", "tarnwell");
    declareOptions(app, settings, raw);
    CLI::App* doctor =
        app.add_subcommand("doctor", "say what this machine offers and, for what it does not, why");
    doctor
        ->add_option("--capture", settings.captureFile,
                     "also write a bundle of the machine for tests and bug reports")
        ->type_name("FILE");
    doctor->add_option("--time", raw.time, "seconds to record for the bundle (default 1)")->type_name("S");
    doctor->add_option("--interval", raw.interval, "milliseconds between the bundle's moments")
        ->type_name("MS");
    doctor->add_option("--machine", settings.machine, "look at this root folder or captured bundle")
        ->type_name("PLACE");

    CLI::App* info = app.add_subcommand("info", "say what a saved collection holds, and from where it is");
    info->add_option("FILE", settings.inputFile, "the saved collection")->required();
    info->add_flag("--json", settings.asJson, "as JSON, for programs");

    const bool question = takeFeatureQuestion(own);
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

    parsed.error = checkedValues(raw, settings);
    if (parsed.error.empty() && separator != arguments.end() && settings.command.empty()) {
        parsed.error = "tarnwell: no command behind --\n";
    }
    const bool asksDoctor = question || doctor->parsed();
    if (parsed.error.empty() && asksDoctor && !settings.command.empty()) {
        parsed.error = "tarnwell: the list of features runs no command; leave out \"--\" and what follows\n";
    }
    if (parsed.error.empty() && info->parsed() && !settings.command.empty()) {
        parsed.error = "tarnwell: \"info\" runs no command; leave out \"--\" and what follows\n";
    }
    if (!parsed.error.empty()) {
        parsed.exitCode = toInt(ExitCode::USAGE);
        return parsed;
    }
    if (asksDoctor) {
        settings.action = Settings::Action::DOCTOR;
    } else if (info->parsed()) {
        settings.action = Settings::Action::INFO;
    }
    parsed.settings = std::move(settings);
    return parsed;
}

} // namespace tarnwell
