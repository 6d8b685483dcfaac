#pragma once

#include "common/export.h"

#include <cstdint>
#include <string>

namespace pwr {

/// Something that must hold on this machine before a capability can work: a file that can be read, a
/// device that is there, a privilege of this process, or a loaded module of the system.
/// Asked when the capability is about to be used, so that the answer is of that moment.
class KRCOMMON_API PluginRequirement {
public:
    enum class Kind : std::uint8_t { READABLE_FILE = 0, DEVICE = 1, PRIVILEGE = 2, MODULE = 3 };

    /// The subject is a path, or the system's own name of the privilege ("administrator" on every
    /// platform) or module; the fix is a sentence for the user.
    PluginRequirement(Kind kind, const std::string& subject, const std::string& fix);
    virtual ~PluginRequirement();

    Kind getKind() const { return m_kind; }
    const std::string& getSubject() const { return m_subject; }
    const std::string& getFix() const { return m_fix; }
    /// Whether it holds; when it does not, `reason` says so in a sentence without end mark.
    virtual bool isMet(std::string& reason) const;

private:
    Kind m_kind;
    std::string m_subject;
    std::string m_fix;
};

} // namespace pwr
