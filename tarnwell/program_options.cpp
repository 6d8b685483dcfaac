#include "tarnwell/program_options.h"

#include "tarnwell/option_effects.h"

#include <algorithm>
#include <stdexcept>

namespace tarnwell {
namespace {

using pwr::usage::Option;
using pwr::usage::Section;
using pwr::usage::TabLevel;

constexpr const char* kHelp = "--help";
constexpr const char* kLog = "--log";

/// An option that is described but does nothing would be worse than none.
KnownOption withEffect(const Option& option) {
    const auto effects = optionEffects();
    const auto effect = std::find_if(effects.begin(), effects.end(),
                                     [&](const OptionEffect& e) { return option.getName() == e.name; });
    if (effect == effects.end()) {
        throw std::logic_error("the option " + option.getName() + " has no effect");
    }
    return {option, effect->apply, effect->mayRepeat, false};
}

} // namespace

ProgramOptions::ProgramOptions() {
    for (const OwnOption& own : ownOptions()) {
        m_usage.addOption(own.section, Option(own.text, TabLevel::LEVEL_1));
    }
    m_usage.setFeatureNote(
        "These blocks are not read on this system: what is asked of them is taken, and answered so.");
    for (const Section section : pwr::usage::SECTIONS) {
        for (const Option& option : m_usage.getOptions(section)) {
            m_main.push_back(withEffect(option));
        }
    }
    for (const Subcommand& subcommand : subcommands()) {
        std::vector<KnownOption>& options = m_bySubcommand[subcommand.name];
        for (const CommandOption& row : subcommand.options()) {
            options.push_back(
                {Option(row.text, TabLevel::LEVEL_1), row.apply, row.mayRepeat, row.isRequired});
        }
        options.push_back(*find(m_main, kHelp));
        options.push_back(*find(m_main, kLog));
    }
}

const std::vector<KnownOption>& ProgramOptions::of(const Subcommand& subcommand) const {
    return m_bySubcommand.at(subcommand.name);
}

const KnownOption* ProgramOptions::find(const std::vector<KnownOption>& options, const std::string& name) {
    const auto found = std::find_if(options.begin(), options.end(), [&](const KnownOption& option) {
        return !option.isArgument() && option.isCalled(name);
    });
    return found == options.end() ? nullptr : &*found;
}

bool ProgramOptions::isOfSection(Section section, const std::string& name) const {
    const auto& options = m_usage.getOptions(section);
    return std::any_of(options.begin(), options.end(),
                       [&](const Option& option) { return option.getName() == name; });
}

} // namespace tarnwell
