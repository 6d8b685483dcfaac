#include "common/plugin/plugin_requirement.h"

#include "common/platform/file.h"
#include "common/platform/privilege.h"

namespace pwr {

namespace {

struct Check {
    PluginRequirement::Kind kind;
    bool (*isMet)(const std::string& subject);
    const char* before;
    const char* behind;
};

constexpr Check CHECKS[] = {
    {PluginRequirement::Kind::READABLE_FILE, platform::isReadable, "file ", " cannot be read"},
    {PluginRequirement::Kind::DEVICE, platform::pathExists, "device ", " is not there"},
    {PluginRequirement::Kind::PRIVILEGE, platform::hasPrivilege, "privilege ", " is not held"},
    {PluginRequirement::Kind::MODULE, platform::isSystemModuleLoaded, "system module ", " is not loaded"},
};

} // namespace

PluginRequirement::PluginRequirement(Kind kind, const std::string& subject, const std::string& fix)
    : m_kind(kind), m_subject(subject), m_fix(fix) {}

PluginRequirement::~PluginRequirement() = default;

bool PluginRequirement::isMet(std::string& reason) const {
    for (const Check& check : CHECKS) {
        if (check.kind == m_kind) {
            if (check.isMet(m_subject)) {
                return true;
            }
            reason = check.before + m_subject + check.behind;
            return false;
        }
    }
    reason = "requirement of an unknown kind: " + m_subject;
    return false;
}

} // namespace pwr
