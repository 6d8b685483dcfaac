#include "common/platform/privilege.h"
#include "common/platform/file.h"

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <string_view>
#include <unistd.h>

namespace pwr::platform {

namespace {

/// In the order of the system's numbers.
constexpr std::string_view CAPABILITIES[] = {
    "CAP_CHOWN",
    "CAP_DAC_OVERRIDE",
    "CAP_DAC_READ_SEARCH",
    "CAP_FOWNER",
    "CAP_FSETID",
    "CAP_KILL",
    "CAP_SETGID",
    "CAP_SETUID",
    "CAP_SETPCAP",
    "CAP_LINUX_IMMUTABLE",
    "CAP_NET_BIND_SERVICE",
    "CAP_NET_BROADCAST",
    "CAP_NET_ADMIN",
    "CAP_NET_RAW",
    "CAP_IPC_LOCK",
    "CAP_IPC_OWNER",
    "CAP_SYS_MODULE",
    "CAP_SYS_RAWIO",
    "CAP_SYS_CHROOT",
    "CAP_SYS_PTRACE",
    "CAP_SYS_PACCT",
    "CAP_SYS_ADMIN",
    "CAP_SYS_BOOT",
    "CAP_SYS_NICE",
    "CAP_SYS_RESOURCE",
    "CAP_SYS_TIME",
    "CAP_SYS_TTY_CONFIG",
    "CAP_MKNOD",
    "CAP_LEASE",
    "CAP_AUDIT_WRITE",
    "CAP_AUDIT_CONTROL",
    "CAP_SETFCAP",
    "CAP_MAC_OVERRIDE",
    "CAP_MAC_ADMIN",
    "CAP_SYSLOG",
    "CAP_WAKE_ALARM",
    "CAP_BLOCK_SUSPEND",
    "CAP_AUDIT_READ",
    "CAP_PERFMON",
    "CAP_BPF",
    "CAP_CHECKPOINT_RESTORE",
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
    const auto* const found = std::find(std::begin(CAPABILITIES), std::end(CAPABILITIES), name);
    return found != std::end(CAPABILITIES) &&
           ((effectiveCapabilities() >> (found - std::begin(CAPABILITIES))) & 1) != 0;
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
