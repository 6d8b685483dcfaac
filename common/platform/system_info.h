#pragma once

#include "common/export.h"
#include "common/pw_types.h"

#include <string>
#include <vector>

namespace pwr::platform {

/// Where a logical processor sits, as the operating system reports it; -1 where it does not say.
struct LogicalProcessor {
    int thread = -1; ///< the system's number of the logical processor
    int package = -1;
    int core = -1; ///< unique within its package
    int module = -1;
    int die = -1;
    int efficiencyClass = -1; ///< higher for the faster kind of core; equal on machines with one kind
};

/// The logical processors that the system's own call reports, in ascending thread order.
/// Empty on systems that describe their topology in files instead.
KRCOMMON_API std::vector<LogicalProcessor> logicalProcessors();

/// The operating system that the program runs on.
struct OperatingSystem {
    std::string hostName;
    std::string name;    ///< for example "Linux"
    std::string type;    ///< machine type, for example "x86_64"
    std::string version; ///< kernel release, or version with build number
    std::string edition; ///< which of the product's editions and releases; "" where files tell it
};

KRCOMMON_API OperatingSystem operatingSystem();

/// Whether the system keeps its counters in files such as /proc/stat.
KRCOMMON_API bool keepsCountersInFiles();

} // namespace pwr::platform
