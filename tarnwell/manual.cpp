#include "tarnwell/manual.h"

#include "tarnwell/program_help.h"
#include "tarnwell/program_texts.h"
#include "tarnwell/settings.h"
#include "tarnwell/standard_output.h"
#include "tarnwell/version.h"

namespace tarnwell {
namespace {

using pwr::usage::Option;
using Attribute = Option::Attribute;

constexpr TextPair kFiles[] = {
    {"tarnwell-YYYYMMDD-HHMMSS.twc",
     "The saved collection, when neither --save nor --output names it; the time is UTC"},
    {"PREFIX.txt, PREFIX_*.csv", "Results, with --output PREFIX"},
};

constexpr TextPair kEnvironment[] = {
    {"NO_COLOR", "When set, headings on a terminal are not shown in bold"},
};

/// Text for the formatter: dashes that may be copied, nothing that it would take for a request.
std::string plain(const std::string& text) {
    std::string out = text.empty() || (text[0] != '.' && text[0] != '\'') ? "" : "\\&";
    for (const char c : text) {
        out += c == '\\' ? "\\e" : c == '-' ? "\\-" : std::string(1, c);
    }
    return out;
}

std::string bold(const std::string& text) {
    return "\\fB" + plain(text) + "\\fR";
}

std::string item(const std::string& head, const std::string& text) {
    return ".TP\n" + head + "\n" + plain(text) + ".\n";
}

std::string optionItem(const Option& option) {
    const std::string alias = option.getAttribute(Attribute::ALIAS);
    const std::string arg = option.getAttribute(Attribute::ARG);
    const bool isOfFeature = option.getName().front() != '-';
    std::string text =
        item(bold(option.getName()) + (alias.empty() ? "" : ", " + bold(alias)) +
                 (arg.empty() ? "" : (isOfFeature ? "=" : " ") + ("\\fI" + plain(arg) + "\\fR")),
             option.getAttribute(Attribute::DESCRIPTION));
    if (const std::string notes = option.getAttribute(Attribute::NOTES); !notes.empty()) {
        text += plain(notes) + "\n";
    }
    if (!option.getValidArgs().empty()) {
        std::string list;
        for (const std::string& argument : option.getValidArgs()) {
            list += (list.empty() ? "" : ", ") + argument;
        }
        text += "Valid: " + plain(list) + ".\n";
    }
    return text;
}

std::string optionItems(const std::vector<Option>& options) {
    std::string text;
    for (const Option& option : options) {
        text += option.isHidden() ? std::string() : optionItem(option);
    }
    return text;
}

template <class Pairs> std::string section(const char* title, const Pairs& pairs, const char* lead = "") {
    std::string text = std::string(".SH ") + title + "\n";
    for (const TextPair& pair : pairs) {
        text += item(bold(std::string(lead) + pair.first), pair.second);
    }
    return text;
}

std::string optionSections(const ProgramOptions& options) {
    std::string text = ".SH OPTIONS\n";
    for (const pwr::usage::Section section : pwr::usage::SECTIONS) {
        text += std::string(".SS ") + pwr::usage::UsageText::getTitle(section) + "\n" +
                optionItems(options.usage().getOptions(section));
    }
    text += ".SS Feature Options\nGiven as " + bold("--feature") +
            " \\fIfeature\\fR:\\fIoption\\fR=\\fIvalue\\fR.\n";
    for (const auto& [feature, rows] : options.usage().getIndividualFeatureOptions()) {
        text += ".PP\nOf the feature " + bold(feature) + ":\n" + optionItems(rows);
    }
    return text;
}

std::string subcommandSections(const ProgramOptions& options) {
    std::string text = ".SH SUBCOMMANDS\n";
    for (const Subcommand& subcommand : subcommands()) {
        text += ".SS " + plain(subcommandLine(options, subcommand)) + "\n" + plain(subcommand.description) +
                ".\n";
        for (const KnownOption& option : options.of(subcommand)) {
            if (!option.text.isHidden() && option.text.getName() != "--help") {
                text += optionItem(option.text);
            }
        }
    }
    return text;
}

} // namespace

std::span<const CommandOption> manualOptions() {
    return {};
}

int runManual(const Settings&) {
    const ProgramOptions options;
    return printWhole(std::string(".TH TARNWELL 1 \"\" \"tarnwell ") + kVersion + "\" \"User Commands\"\n" +
                      ".SH NAME\ntarnwell \\- " + plain(kSummary) + "\n" +
                      section("SYNOPSIS", kForms, "tarnwell ") + ".SH DESCRIPTION\n" + plain(kDescription) +
                      "\n" + optionSections(options) + subcommandSections(options) +
                      section("EXIT STATUS", kExitCodes) + ".PP\n" + plain(kExitCodeNote) + "\n" +
                      section("FILES", kFiles) + section("ENVIRONMENT", kEnvironment) +
                      section("EXAMPLES", kExamples));
}

} // namespace tarnwell
