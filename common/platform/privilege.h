#pragma once

#include "common/export.h"

#include <string>

namespace pwr::platform {

/// Whether this process may do what a privilege allows. "administrator" is known everywhere; other
/// names are the system's own ("CAP_PERFMON", "SeSystemProfilePrivilege"). An unknown one is not held.
KRCOMMON_API bool hasPrivilege(const std::string& name);

/// Whether the system has loaded a module (driver) of this name, or has it built in.
KRCOMMON_API bool isSystemModuleLoaded(const std::string& name);

/// Whether this process may read the file.
KRCOMMON_API bool isReadable(const std::string& path);

} // namespace pwr::platform
