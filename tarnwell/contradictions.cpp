#include "tarnwell/contradictions.h"

#include "tarnwell/argument_reader.h"
#include "tarnwell/settings.h"

#include <algorithm>
#include <filesystem>

namespace tarnwell {
namespace {

constexpr const char* kFeature = "--feature";
constexpr const char* kLog = "--log";
constexpr const char* kNone = "none";

struct Pair {
    const char* one;
    const char* other;
    const char* reason;
};

constexpr Pair kPairs[] = {
    {"--save", "--no-save", "--save and --no-save do not go together"},
    {"--no-post-processing", "--no-save", "with --no-post-processing and --no-save nothing would be left"},
    {"--no-post-processing", "--result", "--result asks for what --no-post-processing leaves out"},
    {"--no-post-processing", "--result-slice-range",
     "--result-slice-range asks for what --no-post-processing leaves out"},
    {"--csv", "--jsonl", "give one of --csv and --jsonl"},
};

/// Options that say how to collect, where nothing is collected.
std::string uselessWithInput(const ReadArguments& read, const ProgramOptions& options,
                             const Settings& settings) {
    for (const ReadArguments::Given& given : read.given) {
        const std::string name = given.option->text.getName();
        if (name != kFeature && options.isOfSection(pwr::usage::Section::COLLECTION, name)) {
            return name + ": makes no sense with --input, which collects nothing";
        }
    }
    return settings.command.empty()
               ? std::string()
               : "a command behind --: makes no sense with --input, which collects nothing";
}

/// The way to a file that may not be there yet; "" when none can be found.
std::filesystem::path placeOf(const std::string& name) {
    std::error_code fault;
    const auto whole = std::filesystem::absolute(name, fault);
    return fault ? std::filesystem::path() : std::filesystem::weakly_canonical(whole, fault);
}

/// The log replaces what has its name, and that must not be a collection.
std::string contradictionOfLog(const ReadArguments& read, const Settings& settings) {
    const std::filesystem::path place = placeOf(settings.logFile);
    for (const ReadArguments::Given& given : read.given) {
        const std::string name = given.option->text.getName();
        const bool isFile =
            given.option->text.getAttribute(pwr::usage::Option::Attribute::ARG_TYPE) == "file";
        if (isFile && name != kLog && !place.empty() && placeOf(given.value) == place) {
            return "--log " + settings.logFile + " would replace what " + name + " names";
        }
    }
    return {};
}

std::string contradictionOfResults(const Settings& settings) {
    const auto& forms = settings.resultForms;
    if (std::find(forms.begin(), forms.end(), kNone) == forms.end()) {
        return {};
    }
    if (forms.size() > 1) {
        return "--result none goes with no other form";
    }
    return settings.saves && settings.inputFile.empty() ? std::string()
                                                        : "with --result none nothing would be left";
}

std::string contradictionOfCommand(const ReadArguments& read, const Settings& settings) {
    if (read.has("--program-delay") && settings.command.empty()) {
        return "--program-delay: there is no program; give one with --program, or behind --";
    }
    if (settings.seconds && settings.commandDelaySeconds >= *settings.seconds) {
        return "--program-delay: the collection would be over (--time) before the program starts";
    }
    return {};
}

std::string contradictionOfSubcommand(const ReadArguments& read, const Settings& settings) {
    const std::string name = read.subcommand->name;
    if (!settings.command.empty()) {
        return name + " runs no command; leave out \"--\" and what follows";
    }
    return name == "export" && !settings.asCsv && !settings.asJson ? "export needs one of --csv and --jsonl"
                                                                   : std::string();
}

} // namespace

std::string contradiction(const ReadArguments& read, const ProgramOptions& options,
                          const Settings& settings) {
    if (read.hasSeparator && read.command.empty()) {
        return "no command behind --";
    }
    if (read.hasSeparator && read.has("--program")) {
        return "two commands to run: one by --program, one behind --";
    }
    for (const Pair& pair : kPairs) {
        if (read.has(pair.one) && read.has(pair.other)) {
            return pair.reason;
        }
    }
    if (std::string replaced = contradictionOfLog(read, settings); !replaced.empty()) {
        return replaced;
    }
    if (read.subcommand != nullptr) {
        return contradictionOfSubcommand(read, settings);
    }
    if (!settings.inputFile.empty()) {
        if (std::string useless = uselessWithInput(read, options, settings); !useless.empty()) {
            return useless;
        }
    }
    const std::string ofResults = contradictionOfResults(settings);
    return ofResults.empty() ? contradictionOfCommand(read, settings) : ofResults;
}

} // namespace tarnwell
