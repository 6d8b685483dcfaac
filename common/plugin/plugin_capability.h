#pragma once

#include "common/export.h"

#include <set>
#include <string>

/// One thing that a plug-in can do, as the user sees it: the name to ask for, a description, the groups
/// it belongs to, and, where it cannot work on this machine, why not and what would mend that.
class KRCOMMON_API PluginCapability {
public:
    PluginCapability(const std::string& name, const std::string& description);

    const std::string& getName() const { return m_name; }
    const std::string& getDescription() const { return m_description; }
    void addGroup(const std::string& group);
    const std::set<std::string>& getGroups() const { return m_groups; }
    /// A hidden capability can be asked for but is not listed.
    void setHidden(bool hidden) { m_hidden = hidden; }
    bool isHidden() const { return m_hidden; }
    /// Both are sentences for the user; the fix may be empty when nothing can be done.
    void setUnavailable(const std::string& reason, const std::string& fix);
    bool isAvailable() const { return m_available; }
    const std::string& getReason() const { return m_reason; }
    const std::string& getFix() const { return m_fix; }

private:
    std::string m_name;
    std::string m_description;
    std::string m_reason;
    std::string m_fix;
    std::set<std::string> m_groups;
    bool m_hidden = false;
    bool m_available = true;
};
