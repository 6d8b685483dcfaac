#include "tarnwell/program_help.h"

#include "common/platform/console.h"
#include "common/usage/text_block.h"
#include "tarnwell/program_texts.h"

#include <cstdio>
#include <nlohmann/json.hpp>
#include <sstream>
#include <utility>

namespace tarnwell {
namespace {

using pwr::usage::Option;
using pwr::usage::TabLevel;
using pwr::usage::UsageText;

/// A line of a list, laid out as options are.
std::string listLine(const std::string& name, const std::string& text) {
    return Option(name, text, TabLevel::LEVEL_1).getFormattedDescription();
}

template <class Pairs>
std::string list(const std::string& title, const Pairs& pairs, const std::string& lead = {}) {
    std::string text = "\n" + title + ":\n";
    for (const TextPair& pair : pairs) {
        text += listLine(lead + pair.first, pair.second);
    }
    return text;
}

std::string paragraph(const std::string& text) {
    constexpr unsigned widthWithoutConsole = 80;
    const unsigned width = pwr::platform::terminalWidth(stdout);
    return pwr::usage::wrapBehind(text, 0, width == 0 ? widthWithoutConsole : width);
}

std::vector<Option> textsOf(const std::vector<KnownOption>& options) {
    std::vector<Option> texts;
    texts.reserve(options.size());
    for (const KnownOption& option : options) {
        texts.push_back(option.text);
    }
    return texts;
}

} // namespace

std::string programHelp(const ProgramOptions& options) {
    std::ostringstream out;
    out << paragraph(kDescription) << list("Usage", kForms, "tarnwell ") << '\n' << options.usage();
    out << "\nSubcommands:\n";
    for (const Subcommand& subcommand : subcommands()) {
        out << listLine(subcommand.name, subcommand.description);
    }
    out << list("Examples", kExamples) << list("Exit codes", kExitCodes) << paragraph(kExitCodeNote);
    return out.str();
}

std::string subcommandLine(const ProgramOptions& options, const Subcommand& subcommand) {
    std::string line = std::string("tarnwell ") + subcommand.name + " [options]";
    for (const KnownOption& option : options.of(subcommand)) {
        if (option.isArgument()) {
            const std::string name = option.text.getName() + (option.mayRepeat ? "..." : "");
            line += option.isRequired ? " " + name : " [" + name + "]";
        }
    }
    return line;
}

std::string subcommandHelp(const ProgramOptions& options, const Subcommand& subcommand) {
    std::string text = paragraph(std::string(subcommand.description) + ".") +
                       "\nUsage: " + subcommandLine(options, subcommand) + "\n";
    for (const bool isArgument : {true, false}) {
        bool isFirst = true;
        for (const KnownOption& option : options.of(subcommand)) {
            if (option.isArgument() == isArgument && !option.text.isHidden()) {
                text += std::exchange(isFirst, false) ? (isArgument ? "\nArguments:\n" : "\nOptions:\n") : "";
                text += option.text.getFormattedDescription();
            }
        }
    }
    return text;
}

std::string optionsAsJson(const ProgramOptions& options) {
    nlohmann::json json;
    options.usage().formatJson(json);
    for (const Subcommand& subcommand : subcommands()) {
        nlohmann::json item{{"name", subcommand.name}, {"description", subcommand.description}};
        UsageText::appendArgsJson(item, textsOf(options.of(subcommand)));
        json["subcommands"].push_back(std::move(item));
    }
    return json.dump(2) + "\n";
}

} // namespace tarnwell
