#pragma once

#include "common/export.h"
#include "common/usage/option_row.h"

#include <cstddef>
#include <iosfwd>
#include <map>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

namespace pwr::usage {

/// How deep an option stands in the usage text: four blanks for each level.
enum class TabLevel : int { LEVEL_0 = 0, LEVEL_1 = 1, LEVEL_2 = 2, LEVEL_3 = 3 };

/// One option of the command line: what parser, usage text, JSON, completions and manual know of it.
/// A value without any tie to the table that it came from. Texts are ASCII. An attribute that was not set is "", and
/// is left out of the JSON. Nothing here fails.
class KRCOMMON_API Option {
public:
    /// In the order in which they are described; each has a key in the JSON. Never renumber: hosts count on it.
    enum class Attribute {
        NAME = 0,        ///< as typed, "--interval"
        DESCRIPTION = 1, ///< help text
        ABBREVIATION = 2,
        NORMAL_NAME = 3, ///< without leading dashes
        ARG = 4,         ///< what stands for the argument, "<milliseconds>"
        ARG_DEFAULT = 5,
        ARG_UNITS = 6,
        ARG_TYPE = 7,
        NOTES = 8,
        ALIAS = 9 ///< another name, shown beside the name
    };

    Option(const std::map<Attribute, std::string>& attributes, const std::vector<std::string>& validArgs);
    /// @p isHidden keeps the option out of the usage text; it stays in the JSON.
    Option(const std::string& name, const std::string& description, TabLevel level, const std::string& arg,
           bool isHidden = false);
    /// A literal would rather become a bool than a string, and its text would be lost.
    Option(const std::string& name, const std::string& description, TabLevel level, const char* arg,
           bool isHidden = false);
    Option(const std::string& name, const std::string& description, TabLevel level, bool isHidden = false);
    Option(const OptionRow& row, TabLevel level);

    void appendValidArgs(const std::vector<std::string>& arguments);
    void replaceValidArgs(const std::vector<std::string>& arguments);

    std::string getName() const { return getAttribute(Attribute::NAME); }
    /// The normal name; when that is not set, the name without leading dashes.
    std::string getNormalizedName() const;
    std::string getAttribute(Attribute attribute) const;
    const std::vector<std::string>& getValidArgs() const { return m_validArgs; }
    TabLevel getTabLevel() const { return m_level; }
    bool isHidden() const { return m_isHidden; }

    /// The option as text, lines ended: names, description beside them, valid arguments below it. Wrapped to
    /// @p width columns; 0 is the width of the console. A word that is wider than its column has a line of its own.
    std::string getFormattedDescription(unsigned width = 0) const;

    /// Adds the attributes that are set to @p json, under their keys, and "valid args" when there are any.
    void formatJson(nlohmann::json& json) const;

protected:
    std::string getAlias() const { return getAttribute(Attribute::ALIAS); }
    /// Name and alias, joined by ", ", behind the indentation.
    std::string getNameColumnFormat() const;
    std::string getTabString() const;
    /// As it is typed behind the name of its feature: "gbe-int=<milliseconds>".
    std::string formatSubOption() const;
    /// The blanks in front of the description.
    void formatWhitespace(std::ostream& stream) const;
    /// @p text without any of the @p characters at its two ends.
    static std::string stripChars(const std::string& text, const std::string& characters);
    /// Columns of the console that the standard output leads to; 80 when it leads to none.
    static unsigned getWindowsConsoleWidth();

private:
    std::string head_i() const;

    std::map<Attribute, std::string> m_attributes;
    std::vector<std::string> m_validArgs;
    TabLevel m_level = TabLevel::LEVEL_1;
    bool m_isHidden = false;
};

} // namespace pwr::usage
