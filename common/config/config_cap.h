#pragma once

#include <string>

#include "common/config/pw_set.h"
#include "common/export.h"

namespace pwr {

/// A capability: something that a user can ask to have collected. A copy for the caller; changing it changes
/// nothing in the hardware description.
class KRCOMMON_API ConfigCap {
public:
    ConfigCap() = default;
    ConfigCap(const std::string& name, const std::string& configfilePrefix);

    /// The name on the command line.
    const std::string& getName() const { return m_name; }
    void setName(const std::string& name) { m_name = name; }
    /// The second field of its statements, by which its messages are asked for.
    const std::string& getConfigfilePrefix() const { return m_configfilePrefix; }
    void setConfigfilePrefix(const std::string& prefix) { m_configfilePrefix = prefix; }
    /// The help text.
    const std::string& getDescription() const { return m_description; }
    void setDescription(const std::string& description) { m_description = description; }
    /// Whether listings leave it out.
    bool isHidden() const { return m_isHidden; }
    void setHidden(bool isHidden) { m_isHidden = isHidden; }
    const PWSet& getGroups() const { return m_groups; }
    void addGroup(const std::string& group) { m_groups.insert(group); }

    bool operator==(const ConfigCap& other) const = default;

private:
    std::string m_name;
    std::string m_configfilePrefix;
    std::string m_description;
    bool m_isHidden = false;
    PWSet m_groups;
};

} // namespace pwr
