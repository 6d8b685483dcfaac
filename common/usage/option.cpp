#include "common/usage/option.h"

#include "common/platform/console.h"
#include "common/usage/text_block.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <ostream>
#include <sstream>

namespace pwr::usage {
namespace {

using Attribute = Option::Attribute;

constexpr unsigned kWidthWithoutConsole = 80;
constexpr const char* kTab = "    ";
constexpr const char* kValidArgs = "  Valid args:";

struct AttributeKey {
    Attribute attribute;
    const char* key;
};

constexpr std::array<AttributeKey, 10> kKeys{{{Attribute::NAME, "name"},
                                              {Attribute::DESCRIPTION, "description"},
                                              {Attribute::ABBREVIATION, "abbreviation"},
                                              {Attribute::NORMAL_NAME, "normal name"},
                                              {Attribute::ARG, "arg"},
                                              {Attribute::ARG_DEFAULT, "arg_default"},
                                              {Attribute::ARG_UNITS, "arg_units"},
                                              {Attribute::ARG_TYPE, "arg_type"},
                                              {Attribute::NOTES, "notes"},
                                              {Attribute::ALIAS, "alias"}}};

/// Where descriptions begin: far enough for most names, but never more than two fifths of a narrow console.
std::size_t descriptionColumn(unsigned width) {
    constexpr std::size_t widest = 30;
    return std::min<std::size_t>(widest, std::size_t{width} * 2 / 5);
}

} // namespace

Option::Option(const std::map<Attribute, std::string>& attributes, const std::vector<std::string>& validArgs)
    : m_attributes(attributes), m_validArgs(validArgs) {}

Option::Option(const std::string& name, const std::string& description, TabLevel level,
               const std::string& arg, bool isHidden)
    : m_attributes{{Attribute::NAME, name}, {Attribute::DESCRIPTION, description}, {Attribute::ARG, arg}},
      m_level(level), m_isHidden(isHidden) {}

Option::Option(const std::string& name, const std::string& description, TabLevel level, const char* arg,
               bool isHidden)
    : Option(name, description, level, std::string(arg == nullptr ? "" : arg), isHidden) {}

Option::Option(const std::string& name, const std::string& description, TabLevel level, bool isHidden)
    : m_attributes{{Attribute::NAME, name}, {Attribute::DESCRIPTION, description}}, m_level(level),
      m_isHidden(isHidden) {}

Option::Option(const OptionRow& row, TabLevel level)
    : m_attributes{{Attribute::NAME, row.name},
                   {Attribute::DESCRIPTION, row.description},
                   {Attribute::ABBREVIATION, row.abbreviation},
                   {Attribute::NORMAL_NAME, stripChars(row.name, "-")},
                   {Attribute::ARG, row.arg},
                   {Attribute::ARG_DEFAULT, row.argDefault},
                   {Attribute::ARG_UNITS, row.argUnits},
                   {Attribute::ARG_TYPE, row.argType},
                   {Attribute::NOTES, row.notes},
                   {Attribute::ALIAS, row.abbreviation}},
      m_validArgs(splitList(row.validArgs)), m_level(level), m_isHidden(row.isHidden) {}

void Option::appendValidArgs(const std::vector<std::string>& arguments) {
    m_validArgs.insert(m_validArgs.end(), arguments.begin(), arguments.end());
}

void Option::replaceValidArgs(const std::vector<std::string>& arguments) {
    m_validArgs = arguments;
}

std::string Option::getNormalizedName() const {
    std::string name = getAttribute(Attribute::NORMAL_NAME);
    if (name.empty()) {
        name = getName();
        name.erase(0, name.find_first_not_of('-'));
    }
    return name;
}

std::string Option::getAttribute(Attribute attribute) const {
    const auto found = m_attributes.find(attribute);
    return found == m_attributes.end() ? std::string() : found->second;
}

std::string Option::getFormattedDescription(unsigned width) const {
    const unsigned columns = width == 0 ? getWindowsConsoleWidth() : width;
    const std::size_t column = descriptionColumn(columns);
    std::string text = head_i();
    if (const std::string description = getAttribute(Attribute::DESCRIPTION); !description.empty()) {
        // Two blanks at least, or the names would run into the description.
        if (text.size() + 2 > column) {
            text += '\n' + std::string(column, ' ');
        } else {
            text.resize(column, ' ');
        }
        text += wrapBehind(description, column, columns);
    } else {
        text += '\n';
    }
    if (!m_validArgs.empty()) {
        std::string list;
        for (const std::string& argument : m_validArgs) {
            list += (list.empty() ? "" : ", ") + argument;
        }
        const std::size_t listColumn = column + std::string(kTab).size();
        text += std::string(column, ' ') + kValidArgs + '\n' + std::string(listColumn, ' ') +
                wrapBehind(list, listColumn, columns);
    }
    return text;
}

void Option::formatJson(nlohmann::json& json) const {
    for (const AttributeKey& row : kKeys) {
        if (const std::string value = getAttribute(row.attribute); !value.empty()) {
            json[row.key] = value;
        }
    }
    if (!m_validArgs.empty()) {
        json["valid args"] = m_validArgs;
    }
}

std::string Option::getNameColumnFormat() const {
    const std::string alias = getAlias();
    return getTabString() + getName() + (alias.empty() ? "" : ", " + alias);
}

std::string Option::getTabString() const {
    std::string tabs;
    for (int level = 0; level < static_cast<int>(m_level); ++level) {
        tabs += kTab;
    }
    return tabs;
}

std::string Option::formatSubOption() const {
    const std::string arg = getAttribute(Attribute::ARG);
    return getName() + (arg.empty() ? "" : "=" + arg);
}

void Option::formatWhitespace(std::ostream& stream) const {
    stream << std::string(descriptionColumn(getWindowsConsoleWidth()), ' ');
}

std::string Option::stripChars(const std::string& text, const std::string& characters) {
    const std::size_t first = text.find_first_not_of(characters);
    return first == std::string::npos ? std::string()
                                      : text.substr(first, text.find_last_not_of(characters) + 1 - first);
}

unsigned Option::getWindowsConsoleWidth() {
    const unsigned width = platform::terminalWidth(stdout);
    return width == 0 ? kWidthWithoutConsole : width;
}

std::string Option::head_i() const {
    const std::string name = getName();
    if (!name.empty() && name.front() != '-') {
        return getTabString() + formatSubOption();
    }
    const std::string arg = getAttribute(Attribute::ARG);
    return getNameColumnFormat() + (arg.empty() ? "" : " " + arg);
}

} // namespace pwr::usage
