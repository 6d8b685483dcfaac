#include "tarnwell/machine_description.h"

#include "common/metadata/system_metadata.h"
#include "common/platform/system_info.h"
#include "common/platform/virtualization.h"
#include "common/plugin/plugin_environment.h"
#include "tarnwell/machine_text.h"
#include "tarnwell/pci_description.h"
#include "tarnwell/processor_description.h"

#include <array>

namespace tarnwell {
namespace {

/// Small files whose text is kept under a name.
struct NamedFile {
    const char* path;
    const char* name;
};
constexpr std::array<NamedFile, 4> kPlatformFiles{{
    {"/sys/class/dmi/id/sys_vendor", "system vendor"},
    {"/sys/class/dmi/id/product_name", "system product"},
    {"/sys/class/dmi/id/bios_version", "firmware version"},
    {"/sys/class/dmi/id/bios_date", "firmware date"},
}};
constexpr std::array<const char*, 2> kReleaseFiles{"/etc/os-release", "/usr/lib/os-release"};

/// The first text that is not empty; "unknown" without one, because the saved texts must not be empty: an empty
/// one reads back as missing.
std::string known(const std::string& text, const std::string& otherwise) {
    return !text.empty() ? text : otherwise.empty() ? "unknown" : otherwise;
}

/// The full name of the distribution, with its release.
std::string distributionOf(const pwr::MachineFiles& machine) {
    for (const char* const file : kReleaseFiles) {
        const auto facts = factsOf(textOf(machine, file), '=');
        for (const char* const name : {"PRETTY_NAME", "NAME"}) {
            const auto fact = facts.find(name);
            if (fact != facts.end() && !fact->second.empty()) {
                return fact->second;
            }
        }
    }
    return {};
}

void describeSystem(const pwr::MachineFiles& machine, bool isLive, pwr::SystemMetadata& system) {
    const auto running = isLive ? pwr::platform::operatingSystem() : pwr::platform::OperatingSystem{};
    system.hostName = known(textOf(machine, "/proc/sys/kernel/hostname"), running.hostName);
    system.osName = known(textOf(machine, "/proc/sys/kernel/ostype"), running.name);
    system.osVersion = known(textOf(machine, "/proc/sys/kernel/osrelease"), running.version);
    system.osType = known(textOf(machine, "/proc/sys/kernel/arch"), running.type);
    if (const std::string distribution = distributionOf(machine); !distribution.empty()) {
        system.platformSpecifiers.emplace_back("distribution", distribution);
    }
    if (!running.edition.empty()) {
        system.platformSpecifiers.emplace_back("edition", running.edition);
    }
    if (isLive) {
        const pwr::platform::Virtualization facts = pwr::platform::virtualization();
        system.hyperVEnabled = facts.hasHypervisor;
        system.vsmEnabled = facts.hasSecureMode;
        system.hvciEnabled = facts.protectsCodeIntegrity;
    }
}

void describePlatform(const pwr::MachineFiles& machine, pwr::SystemMetadata& system) {
    for (const NamedFile& file : kPlatformFiles) {
        if (const std::string text = textOf(machine, file.path); !text.empty()) {
            system.platformSpecifiers.emplace_back(file.name, text);
        }
    }
}

} // namespace

void describeMachine(const pwr::MachineFiles& machine, bool isLive, pwr::SystemMetadata& system) {
    const NoFiles none;
    const bool readsFiles = !isLive || pwr::platform::keepsCountersInFiles();
    const pwr::MachineFiles& files = readsFiles ? machine : none;
    describeSystem(files, isLive, system);
    describeProcessor(files, isLive, system);
    describePlatform(files, system);
    describePci(files, isLive, system);
    system.tafEndpoints = g_pluginEnvironment->getLoadedAggrTelemInfo();
    system.platformName = known(system.platformName, {});
}

} // namespace tarnwell
