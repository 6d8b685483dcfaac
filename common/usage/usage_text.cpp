#include "common/usage/usage_text.h"

#include "common/usage/option_rows.h"
#include "common/usage/text_block.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <ostream>

namespace pwr::usage {
namespace {

constexpr const char* kOptionsKey = "options";

struct SectionRow {
    const char* title;
    std::span<const OptionRow> (*rows)();
};

constexpr std::array<SectionRow, SECTIONS.size()> kSections{
    {{"General Options", generalRows},
     {"Collection Options", collectionRows},
     {"Post-processing Options", postProcessingRows}}};

std::vector<Option> optionsOf(std::span<const OptionRow> rows, TabLevel level) {
    std::vector<Option> options;
    options.reserve(rows.size());
    for (const OptionRow& row : rows) {
        options.emplace_back(row, level);
    }
    return options;
}

/// Options alone know how wide the console is.
class WidthOption : public Option {
public:
    using Option::getWindowsConsoleWidth;
};

unsigned consoleWidth() {
    return WidthOption::getWindowsConsoleWidth();
}

void write(std::ostream& out, const std::vector<Option>& options, unsigned width) {
    for (const Option& option : options) {
        if (!option.isHidden()) {
            out << option.getFormattedDescription(width);
        }
    }
}

} // namespace

UsageText::UsageText() {
    for (std::size_t i = 0; i < kSections.size(); ++i) {
        m_options[i] = optionsOf(kSections[i].rows(), TabLevel::LEVEL_1);
    }
    for (const OptionGroup& group : featureGroups()) {
        m_featureOptions[group.name] = optionsOf(group.rows, TabLevel::LEVEL_2);
    }
}

const char* UsageText::getTitle(Section section) {
    return kSections.at(static_cast<std::size_t>(section)).title;
}

const std::vector<Option>& UsageText::getOptions(Section section) const {
    return m_options.at(static_cast<std::size_t>(section));
}

void UsageText::addOption(Section section, const Option& option) {
    m_options.at(static_cast<std::size_t>(section)).push_back(option);
}

void UsageText::updateCxhDeviceInfo(const std::string& text) {
    replaceValidArgs_i("cxh-ip-lat-limit", text);
}

void UsageText::updateTcssIpInfo(const std::string& text) {
    replaceValidArgs_i("tcss-pm-dbg", text);
}

void UsageText::replaceValidArgs_i(const char* name, const std::string& text) {
    for (auto& [feature, options] : m_featureOptions) {
        for (Option& option : options) {
            if (option.getName() == name) {
                option.replaceValidArgs(splitList(text));
            }
        }
    }
}

void UsageText::formatJson(nlohmann::json& json) const {
    json[kOptionsKey] = nlohmann::json::array();
    for (const auto& options : m_options) {
        appendArgsJson(json, options);
    }
    for (const auto& [feature, options] : m_featureOptions) {
        appendArgsJson(json, options);
    }
}

void UsageText::appendArgsJson(nlohmann::json& json, const std::vector<Option>& options) {
    nlohmann::json& list = json[kOptionsKey];
    for (const Option& option : options) {
        nlohmann::json item = nlohmann::json::object();
        option.formatJson(item);
        list.push_back(std::move(item));
    }
}

std::ostream& operator<<(std::ostream& out, const UsageText& usage) {
    for (const Section section : SECTIONS) {
        out << UsageText::getTitle(section) << ":\n";
        write(out, usage.getOptions(section), usage.getWidth());
        out << '\n';
    }
    const std::string tab = "    ";
    out << "Feature Options, as --feature <feature>:<option>=<value>:\n";
    if (!usage.getFeatureNote().empty()) {
        const unsigned width = usage.getWidth() == 0 ? consoleWidth() : usage.getWidth();
        out << tab << wrapBehind(usage.getFeatureNote(), tab.size(), width);
    }
    for (const auto& [feature, options] : usage.getIndividualFeatureOptions()) {
        out << tab << feature << '\n';
        write(out, options, usage.getWidth());
    }
    return out;
}

} // namespace pwr::usage
