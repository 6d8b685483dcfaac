#include "common/metadata/cpu_metadata.h"
#include "common/metadata/system_metadata.h"
#include "common/metadata/system_metadata_text.h"
#include "common/plugin/plugin_environment.h"
#include "common/tokenizer.h"
#include "common/tw_clock.h"

#include <array>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <vector>

namespace pwr {

namespace {

using system_text::hexText;
using system_text::joined;
using system_text::megahertzText;
using system_text::versionText;

constexpr const char* c_unknown = "NA";
constexpr double c_microsecondsPerSecond = 1e6;
constexpr std::string_view c_s0ixKey = "S0IX-SUBSTATES-";

std::string orUnknown(const std::string& text) {
    return text.empty() ? c_unknown : text;
}

/// Frequencies that nobody told are 0, which is no frequency.
std::string frequencyOrUnknown(float megahertz) {
    return megahertz > 0.0F ? megahertzText(megahertz) : c_unknown;
}

/// Seconds; the wall clock may have been set back meanwhile, then the ticks know better.
std::optional<double> durationOf(const SystemMetadata& system) {
    if (system.startTimeval != 0 && system.stopTimeval >= system.startTimeval) {
        return static_cast<double>(system.stopTimeval - system.startTimeval) / c_microsecondsPerSecond;
    }
    if (system.stopTSC > system.startTSC && system.twaClockFreq > 0.0F) {
        return static_cast<double>(system.stopTSC - system.startTSC) /
               (double{system.twaClockFreq} * c_microsecondsPerSecond);
    }
    return std::nullopt;
}

std::string durationOrUnknown(const SystemMetadata& system) {
    const std::optional<double> seconds = durationOf(system);
    if (!seconds) {
        return c_unknown;
    }
    char buffer[96]; // 64 bits of ticks at the smallest frequency are below 10^59
    const auto end = std::to_chars(buffer, std::end(buffer), *seconds, std::chars_format::fixed, 6);
    return std::string(buffer, end.ptr);
}

/// A packed version in words; nothing for a part that is not there.
std::string partLine(const char* part, const std::string& version, const std::string& date) {
    if (version.empty() && date.empty()) {
        return {};
    }
    std::string line = part + (version.empty() ? "" : " " + version);
    line += date.empty() ? "" : version.empty() ? " of " + date : ", built " + date;
    return line + "\n";
}

std::string binaryText(pw_u32_t value) {
    std::string digits;
    do {
        digits.insert(digits.begin(), (value & 1) != 0 ? '1' : '0');
        value >>= 1;
    } while (value != 0);
    return digits;
}

std::string defaultClockName(const SystemMetadata& system) {
    for (const TWClockSync& clock : system.clockSyncs) {
        if (!clock.defaultClockName.empty()) {
            return clock.defaultClockName;
        }
    }
    const TWClockSource* const clock = g_pluginEnvironment->getDefaultClock();
    return clock != nullptr && !clock->getName().empty() ? clock->getName() : "Default";
}

std::string displayNameOf(const PlatformMetadata* object) {
    return object == nullptr ? std::string() : object->getDisplayName();
}

std::string telemetryDevices(const SystemMetadata& system) {
    std::set<pw_u32_t> guids;
    for (const auto& [endpoint, info] : system.tafEndpoints) {
        const pw_u32_t guid = info.guid; // a copy, because the packed record does not align its fields
        guids.insert(guid);
    }
    std::vector<std::string> names;
    for (const pw_u32_t guid : guids) {
        names.push_back("0x" + hexText(guid));
    }
    return joined(names, ", ");
}

std::string busDevices(const SystemMetadata& system) {
    std::vector<std::string> names;
    names.reserve(system.pciDevices.size());
    for (const PCIDevice& device : system.pciDevices) {
        names.push_back(system_text::deviceName(device));
    }
    return joined(names, ", ");
}

std::string s0ixLines(const SystemMetadata& system) {
    std::string lines;
    for (const auto& [type, object] : system.platformMetadata) {
        if (object == nullptr) {
            continue;
        }
        for (const auto& [name, value] : object->getMetadataValues()) {
            std::vector<std::string> states = Tokenizer(value, " ,").get_all_tokens();
            if (!name.starts_with(c_s0ixKey) || states.empty()) {
                continue;
            }
            for (std::string& state : states) {
                state.insert(0, "S0i2.");
            }
            lines += "\nSupported S0ix State(s) for " + name.substr(c_s0ixKey.size()) +
                     " die: " + joined(states, ", ");
        }
    }
    return lines;
}

/// What the headers tell of a topology. Counted at the nodes: the tree's own maps hold only one node of
/// each key, and the cores of two packages may share one.
struct TopologyFacts {
    std::array<std::size_t, c_topNodeTypes> nodes{};
    std::map<pw_u32_t, std::size_t> coresOfModel;

    void add(const TNode& node) {
        ++nodes[static_cast<std::size_t>(node.getType())];
        if (const auto* const core = dynamic_cast<const TNodeCore*>(&node)) {
            const pw_u32_t model = core->getCoreModelIDAndType();
            if (model != 0 && model != TNodeCore::c_32BitMask) {
                ++coresOfModel[model];
            }
        }
        for (const TNode* const child : node) {
            add(*child);
        }
    }
    std::string count(top_node_type type) const {
        return std::to_string(nodes[static_cast<std::size_t>(type)]);
    }
};

/// A core's model word has the type of the core in the high byte and the number of its model below.
std::string coreTypeName(pw_u32_t modelWord) {
    const pw_u32_t type = modelWord >> 24;
    const char* const known = type == 0x40 ? " performance" : type == 0x20 ? " efficiency" : "";
    return std::string(known) + " 0x" + hexText(type, 2);
}

std::string topologyLines(const TopTree& tree) {
    TopologyFacts facts;
    std::vector<const TNode*> packages;
    tree.getAllPackages(packages);
    for (const TNode* const package : packages) {
        facts.add(*package);
    }
    std::string lines = " \nTotal # of packages: " + facts.count(top_node_type::PACKAGE) +
                        " \nTotal # of modules: " + facts.count(top_node_type::MODULE) +
                        " \nTotal # of cores: " + facts.count(top_node_type::CORE) +
                        " \nTotal # of logical processors: " + facts.count(top_node_type::THREAD);
    if (!facts.coresOfModel.empty()) {
        lines += "\nCPU native model:";
    }
    for (const auto& [word, cores] : facts.coresOfModel) {
        lines += "\nCore" + coreTypeName(word) + " = 0x" + hexText(word & 0xFFFFFF, 6) + " (" +
                 std::to_string(cores) + (cores == 1 ? " core)" : " cores)");
    }
    return lines;
}

} // namespace

std::string SystemMetadata::formatTimevalAsString(pw_u64_t timeval) {
    using namespace std::chrono;
    constexpr auto afterLastYear = sys_days(year(10000) / January / 1).time_since_epoch();
    if (timeval == 0 || timeval >= static_cast<pw_u64_t>(microseconds(afterLastYear).count())) {
        return c_unknown;
    }
    const sys_time<microseconds> moment{microseconds(timeval)};
    const sys_days day = floor<days>(moment);
    const year_month_day date(day);
    const hh_mm_ss time(floor<seconds>(moment - day));
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02u-%02u %02d:%02d:%02d UTC", int{date.year()},
                  unsigned{date.month()}, unsigned{date.day()}, static_cast<int>(time.hours().count()),
                  static_cast<int>(time.minutes().count()), static_cast<int>(time.seconds().count()));
    return text;
}

std::string SystemMetadata::getCollectionStartTime() const {
    return formatTimevalAsString(startTimeval);
}

std::string SystemMetadata::getProgramStartTime() const {
    return formatTimevalAsString(programStartTimeval);
}

double SystemMetadata::getCollectionDurationSec() const {
    return durationOf(*this).value_or(0.0);
}

std::string SystemMetadata::getVersionHeader(bool isDetailed) const {
    const std::string rule = std::string(80, '-') + "\n";
    std::string text = rule + "tarnwell " + versionText(appVersion);
    text += nonNumericVersion.empty() ? "\n" : " " + nonNumericVersion + "\n";
    if (isDetailed) {
        text += partLine("Build", buildRef, appBuildDate);
        text += partLine("Driver", driverVersion == 0 ? "" : versionText(driverVersion), driverBuildDate);
    }
    return text + rule;
}

std::string SystemMetadata::getCollectionHeader() const {
    const CPUMetadata* const cpu = getCPUMetadata();
    return "Command line options: " + joined(cmdLine, " ") + "\n\nProgram Started: " + getProgramStartTime() +
           "\nData Collection Started: " + getCollectionStartTime() + " \n" + defaultClockName(*this) +
           " Clock Frequency (MHz): " + frequencyOrUnknown(twaClockFreq) +
           " \nCPU Base Operating Frequency (MHz): " +
           frequencyOrUnknown(cpu == nullptr ? 0.0F : cpu->baseOpFreq) +
           "\nCollection duration (sec): " + durationOrUnknown(*this) +
           "\nCollection begin timestamp: " + std::to_string(startTSC) +
           "\nCollection end timestamp: " + std::to_string(stopTSC) + "\n";
}

std::string SystemMetadata::getSystemHWHeader() const {
    const CPUMetadata* const cpu = getCPUMetadata();
    const std::string cpuName = displayNameOf(cpu);
    std::string text = "\nSystem Name: " + orUnknown(hostName) + "\nOperating System: " + orUnknown(osName) +
                       (osType.empty() ? "" : " " + osType) + " [" + orUnknown(osVersion) + "]" +
                       "\nCPU: " + orUnknown(cpuName.empty() ? platformName : cpuName);
    if (cpu != nullptr) {
        text += "\nCPU ID (family.model.stepping): " + std::to_string(cpu->getFamily()) + "." +
                std::to_string(cpu->getModel()) + "." + std::to_string(cpu->getStepping()) +
                "\nPlatform ID: 0b" + binaryText(cpu->platformId);
    }
    text += igfxId == 0 ? "\nIntegrated GPU Device: NA" : "\nIntegrated GPU Device ID: 0x" + hexText(igfxId);
    text += "\nTAF: " + orUnknown(telemetryDevices(*this)) + "\nPCI: " + orUnknown(busDevices(*this)) +
            "\nCXH: " + orUnknown(displayNameOf(getPlatformMetadata(PlatformType::CXH)));
    // Without a processor's record nobody asked for the memory.
    text += std::string("\nEDRAM Present: ") + (edramCapable ? "Yes" : cpu != nullptr ? "No" : "Unsupported");
    text += s0ixLines(*this);
    if (cpu != nullptr) {
        text += topologyLines(cpu->getCPUTopology());
    }
    return text + "\n";
}

} // namespace pwr
