#include "tarnwell/machine_description.h"

#include "common/line_reader.h"
#include "common/metadata/cpu_metadata.h"
#include "common/platform/system_info.h"
#include "common/pw_utils.h"
#include "tarnwell/machine_topology.h"

#include <charconv>
#include <map>
#include <memory>

namespace tarnwell {
namespace {

constexpr float kKilohertzPerMegahertz = 1000.0F;

std::string textOf(const pwr::MachineFiles& machine, const std::string& path) {
    std::string text;
    if (machine.read(path, text) != pwr::MachineStatus::OK) {
        return {};
    }
    const std::size_t last = text.find_last_not_of(" \n\r\t");
    return last == std::string::npos ? std::string() : text.substr(0, last + 1);
}

/// "key : value" lines up to the first blank line, as /proc/cpuinfo describes one processor.
std::map<std::string, std::string> firstProcessorOf(const std::string& text) {
    std::map<std::string, std::string> facts;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        const std::string line = text.substr(at, end - at);
        at = end + 1;
        if (line.empty()) {
            break;
        }
        const std::size_t colon = line.find(':');
        if (colon != std::string::npos) {
            facts.emplace(pwr::LineReader::trim(line.substr(0, colon)),
                          pwr::LineReader::trim(line.substr(colon + 1)));
        }
    }
    return facts;
}

unsigned numberOf(const std::string& text) {
    unsigned value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

pwr::platform::ProcessorIdentity identityOf(const pwr::MachineFiles& machine, bool isLive) {
    auto facts = firstProcessorOf(textOf(machine, "/proc/cpuinfo"));
    if (facts.count("cpu family") == 0) {
        return isLive ? pwr::platform::processorIdentity() : pwr::platform::ProcessorIdentity{};
    }
    return {numberOf(facts["cpu family"]), numberOf(facts["model"]), numberOf(facts["stepping"]),
            facts["model name"]};
}

pwr::platform::OperatingSystem operatingSystemOf(const pwr::MachineFiles& machine, bool isLive) {
    pwr::platform::OperatingSystem system;
    system.hostName = textOf(machine, "/proc/sys/kernel/hostname");
    system.name = textOf(machine, "/proc/sys/kernel/ostype");
    system.version = textOf(machine, "/proc/sys/kernel/osrelease");
    system.type = textOf(machine, "/proc/sys/kernel/arch");
    if (isLive) {
        const pwr::platform::OperatingSystem running = pwr::platform::operatingSystem();
        system.hostName = system.hostName.empty() ? running.hostName : system.hostName;
        system.name = system.name.empty() ? running.name : system.name;
        system.version = system.version.empty() ? running.version : system.version;
        system.type = system.type.empty() ? running.type : system.type;
    }
    return system;
}

float frequencyOf(const pwr::MachineFiles& machine, const char* file) {
    const std::string text = textOf(machine, std::string("/sys/devices/system/cpu/cpu0/cpufreq/") + file);
    return static_cast<float>(numberOf(text)) / kKilohertzPerMegahertz;
}

/// The saved texts must not be empty: an empty one reads back as missing.
std::string known(const std::string& text) {
    return text.empty() ? "unknown" : text;
}

} // namespace

void describeMachine(const pwr::MachineFiles& machine, bool isLive, pwr::SystemMetadata& system) {
    const pwr::platform::OperatingSystem os = operatingSystemOf(machine, isLive);
    const pwr::platform::ProcessorIdentity processor = identityOf(machine, isLive);
    system.hostName = known(os.hostName);
    system.osName = known(os.name);
    system.osType = known(os.type);
    system.osVersion = known(os.version);
    system.platformName = known(processor.brand);

    auto cpu = std::make_unique<pwr::CPUMetadata>();
    cpu->setFMS(static_cast<pw_u8_t>(processor.family), static_cast<pw_u8_t>(processor.model),
                static_cast<pw_u8_t>(processor.stepping));
    cpu->lfmFreq = frequencyOf(machine, "cpuinfo_min_freq");
    cpu->hfmFreq = frequencyOf(machine, "cpuinfo_max_freq");
    cpu->baseOpFreq = frequencyOf(machine, "base_frequency");
    cpu->buildTopology(topologyText(machine, isLive), 0);
    system.setPlatformMetadata(pwr::PlatformType::CPU, cpu.release());
}

} // namespace tarnwell
