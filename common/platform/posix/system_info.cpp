#include "common/platform/system_info.h"

#include <sys/utsname.h>

namespace pwr::platform {

std::vector<LogicalProcessor> logicalProcessors() {
    return {};
}

OperatingSystem operatingSystem() {
    utsname names{};
    if (uname(&names) != 0) {
        return {};
    }
    return {names.nodename, names.sysname, names.machine, names.release, {}};
}

bool keepsCountersInFiles() {
    return true;
}

} // namespace pwr::platform
