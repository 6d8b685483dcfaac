#include "common/platform/privilege.h"
#include "common/platform/file.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <fstream>
#include <string_view>
#include <unistd.h>

namespace pwr::platform {

namespace {

struct Capability {
    std::string_view name;
    unsigned bit;
};

// The system's numbers of those that reading counters may ask for.
constexpr std::array CAPABILITIES = {
    Capability{"CAP_DAC_READ_SEARCH", 2}, Capability{"CAP_NET_ADMIN", 12}, Capability{"CAP_SYS_RAWIO", 17},
    Capability{"CAP_SYS_PTRACE", 19},     Capability{"CAP_SYS_ADMIN", 21}, Capability{"CAP_SYS_NICE", 23},
    Capability{"CAP_SYSLOG", 34},         Capability{"CAP_PERFMON", 38},   Capability{"CAP_BPF", 39},
};

std::uint64_t effectiveCapabilities() {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        if (word == "CapEff:") {
            std::uint64_t mask = 0;
            status >> std::hex >> mask;
            return mask;
        }
    }
    return 0;
}

} // namespace

bool hasPrivilege(const std::string& name) {
    if (name == "administrator") {
        return geteuid() == 0;
    }
    const auto* const found = std::find_if(CAPABILITIES.begin(), CAPABILITIES.end(),
                                           [&](const Capability& known) { return known.name == name; });
    return found != CAPABILITIES.end() && ((effectiveCapabilities() >> found->bit) & 1) != 0;
}

bool isSystemModuleLoaded(const std::string& name) {
    // The system writes the hyphens of a module's name as underscores.
    std::string folder = name;
    std::replace(folder.begin(), folder.end(), '-', '_');
    return !folder.empty() && isFolder("/sys/module/" + folder);
}

bool isReadable(const std::string& path) {
    return access(path.c_str(), R_OK) == 0;
}

} // namespace pwr::platform
