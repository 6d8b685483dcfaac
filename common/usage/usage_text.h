#pragma once

#include "common/usage/option.h"

#include <array>
#include <iosfwd>
#include <map>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

namespace pwr::usage {

/// The sections of the usage text that hold options for the command line itself, in the order of the text.
enum class Section { GENERAL, COLLECTION, POST_PROCESSING };
inline constexpr std::array SECTIONS{Section::GENERAL, Section::COLLECTION, Section::POST_PROCESSING};

/// All options of the tool, section by section: what help, JSON description, completions and manual are made of.
/// An object begins with the library's table and is then a value of its own, so a host adds the options that only
/// it has. Threads: none shared; nothing here fails.
class KRCOMMON_API UsageText {
public:
    UsageText();

    /// "General Options", "Collection Options", "Post-processing Options".
    static const char* getTitle(Section section);
    const std::vector<Option>& getOptions(Section section) const;
    /// Feature name to the options that go with it. The features are known by name; whether a machine has them is
    /// not this table's matter.
    const std::map<std::string, std::vector<Option>>& getIndividualFeatureOptions() const {
        return m_featureOptions;
    }

    /// Adds a host's own option behind those of a section.
    void addOption(Section section, const Option& option);

    /// Replace the valid arguments of "cxh-ip-lat-limit" and of "tcss-pm-dbg" by what the running machine has:
    /// @p text holds them separated by commas or line ends.
    void updateCxhDeviceInfo(const std::string& text);
    void updateTcssIpInfo(const std::string& text);

    /// A sentence in front of the features' options: what a host has to say of them.
    void setFeatureNote(const std::string& note) { m_featureNote = note; }
    const std::string& getFeatureNote() const { return m_featureNote; }

    /// Columns to wrap the text to; 0, as at first, is the width of the console.
    void setWidth(unsigned width) { m_width = width; }
    unsigned getWidth() const { return m_width; }

    /// Writes all options, hidden ones included, as an array under the key "options": sections first, then features.
    void formatJson(nlohmann::json& json) const;
    /// Adds options to the array under the key "options", which is made when it is not there.
    static void appendArgsJson(nlohmann::json& json, const std::vector<Option>& options);

private:
    void replaceValidArgs_i(const char* name, const std::string& text);

    std::array<std::vector<Option>, SECTIONS.size()> m_options;
    std::map<std::string, std::vector<Option>> m_featureOptions;
    std::string m_featureNote;
    unsigned m_width = 0;
};

/// The options that are not hidden, by section, each with its description; then those of features.
KRCOMMON_API std::ostream& operator<<(std::ostream& out, const UsageText& usage);

} // namespace pwr::usage
