#include "tarnwell/machine_topology.h"

#include "common/platform/system_info.h"
#include "tarnwell/processor_list.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <set>

namespace tarnwell {
namespace {

using pwr::MachineFiles;
using pwr::MachineStatus;
using Processor = pwr::platform::LogicalProcessor;

constexpr int kAbsent = -1;
constexpr std::uint32_t kNoCoreType = 0xFFFFFFFF;
// A cluster id of all bits set is the kernel's "there is none".
constexpr int kNoCluster = 65535;

/// The processor lists that the kernel keeps for each kind of core of a hybrid machine, with the
/// core type that the processor's own report uses.
struct CoreKind {
    const char* path;
    std::uint32_t type;
};
constexpr std::uint32_t kFastCore = 0x40000000;
constexpr std::uint32_t kSmallCore = 0x20000000;
constexpr std::array<CoreKind, 2> kCoreKinds{{
    {"/sys/devices/cpu_core/cpus", kFastCore},
    {"/sys/devices/cpu_atom/cpus", kSmallCore},
}};

std::string processorFolder(int processor) {
    return "/sys/devices/system/cpu/cpu" + std::to_string(processor);
}

bool readList(const MachineFiles& machine, const std::string& path, std::vector<int>& out) {
    std::string text;
    return machine.read(path, text) == MachineStatus::OK && parseProcessorList(text, out);
}

int readNumber(const MachineFiles& machine, const std::string& path) {
    std::string text;
    int value = kAbsent;
    if (machine.read(path, text) == MachineStatus::OK) {
        std::from_chars(text.data(), text.data() + text.size(), value);
    }
    return value;
}

/// A cluster counts as a module only when it joins several cores; else it is the core once more.
int moduleOf(const MachineFiles& machine, const std::string& folder) {
    std::vector<int> cluster;
    std::vector<int> core;
    const int id = readNumber(machine, folder + "/cluster_id");
    if (id < 0 || id == kNoCluster || !readList(machine, folder + "/cluster_cpus_list", cluster) ||
        !readList(machine, folder + "/core_cpus_list", core)) {
        return kAbsent;
    }
    return cluster.size() > core.size() ? id : kAbsent;
}

std::vector<int> onlineProcessors(const MachineFiles& machine) {
    std::vector<int> online;
    if (readList(machine, "/sys/devices/system/cpu/online", online) && !online.empty()) {
        return online;
    }
    std::string text;
    machine.read("/proc/stat", text);
    for (std::size_t at = text.find("\ncpu"); at != std::string::npos; at = text.find("\ncpu", at + 1)) {
        int number = kAbsent;
        std::from_chars(text.data() + at + 4, text.data() + text.size(), number);
        if (number >= 0) {
            online.push_back(number);
        }
    }
    return online;
}

std::vector<Processor> processorsOf(const MachineFiles& machine) {
    std::vector<Processor> processors;
    for (const int number : onlineProcessors(machine)) {
        const std::string folder = processorFolder(number) + "/topology";
        Processor processor;
        processor.thread = number;
        processor.package = std::max(readNumber(machine, folder + "/physical_package_id"), 0);
        processor.core = readNumber(machine, folder + "/core_id");
        processor.core = processor.core < 0 ? number : processor.core;
        processor.die = readNumber(machine, folder + "/die_id");
        processor.module = moduleOf(machine, folder);
        processors.push_back(processor);
    }
    return processors;
}

/// Every package has a die 0; only a package of several dies is worth a level of its own.
void forgetSingleDies(std::vector<Processor>& processors) {
    std::map<int, std::set<int>> dies;
    for (const Processor& processor : processors) {
        dies[processor.package].insert(processor.die);
    }
    for (Processor& processor : processors) {
        if (dies[processor.package].size() < 2) {
            processor.die = kAbsent;
        }
    }
}

/// Where the system only ranks its cores, the highest rank is the fast kind, if there are several ranks.
void addRankedTypes(const std::vector<Processor>& processors, std::map<int, std::uint32_t>& types) {
    const auto [least, most] =
        std::minmax_element(processors.begin(), processors.end(), [](const Processor& a, const Processor& b) {
            return a.efficiencyClass < b.efficiencyClass;
        });
    if (least == processors.end() || least->efficiencyClass == most->efficiencyClass) {
        return;
    }
    for (const Processor& processor : processors) {
        types[processor.thread] = processor.efficiencyClass == most->efficiencyClass ? kFastCore : kSmallCore;
    }
}

std::map<int, std::uint32_t> coreTypes(const MachineFiles& machine) {
    std::map<int, std::uint32_t> types;
    for (const CoreKind& kind : kCoreKinds) {
        std::vector<int> processors;
        readList(machine, kind.path, processors);
        for (const int processor : processors) {
            types[processor] = kind.type;
        }
    }
    return types;
}

} // namespace

std::string topologyText(const MachineFiles& machine, bool isLive) {
    std::vector<Processor> processors = processorsOf(machine);
    if (processors.empty() && isLive) {
        processors = pwr::platform::logicalProcessors();
    }
    if (processors.empty()) {
        processors.push_back({0, 0, 0, kAbsent, kAbsent, kAbsent});
    }
    forgetSingleDies(processors);
    std::map<int, std::uint32_t> types = coreTypes(machine);
    addRankedTypes(processors, types);
    std::string text;
    for (const Processor& processor : processors) {
        const auto type = types.find(processor.thread);
        text += std::to_string(processor.thread) + ' ' + std::to_string(processor.package) + ' ' +
                std::to_string(processor.core) + ' ' +
                std::to_string(type == types.end() ? kNoCoreType : type->second) + ' ' +
                std::to_string(processor.die) + ' ' + std::to_string(processor.module) + '\n';
    }
    return text;
}

} // namespace tarnwell
