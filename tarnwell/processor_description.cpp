#include "tarnwell/processor_description.h"

#include "common/metadata/cpu_metadata.h"
#include "common/metadata/system_metadata.h"
#include "common/platform/processor.h"
#include "tarnwell/machine_text.h"
#include "tarnwell/machine_topology.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace tarnwell {
namespace {

using Facts = std::map<std::string, std::string>;
using pwr::MachineFiles;
using pwr::platform::ProcessorReport;
using pwr::platform::ProcessorSettings;

constexpr double kKilohertzPerMegahertz = 1000.0;
constexpr double kMegahertzPerGigahertz = 1000.0;

/// Lines of the kernel's description that are kept as they stand, with the name that they are kept under.
struct KeptFact {
    const char* fact;
    const char* name;
};
constexpr std::array<KeptFact, 5> kKeptFacts{{
    {"vendor_id", "vendor"},
    {"cache size", "cache size"},
    {"address sizes", "address sizes"},
    {"CPU implementer", "implementer"},
    {"CPU part", "part"},
}};

double decimalOf(const char* begin, const char* end) {
    double value = 0;
    std::from_chars(begin, end, value);
    return value;
}

/// All processors' values of one frequency file, in MHz: hybrid machines have one range for each kind of core.
std::vector<double> frequenciesOf(const MachineFiles& machine, const char* file) {
    std::vector<double> all;
    for (const std::string& path :
         pwr::matchPaths(machine, std::string("/sys/devices/system/cpu/cpu*/cpufreq/") + file)) {
        const std::uint32_t kilohertz = numberOf(textOf(machine, path));
        if (kilohertz != 0) {
            all.push_back(kilohertz / kKilohertzPerMegahertz);
        }
    }
    return all;
}

double highest(const std::vector<double>& all) {
    return all.empty() ? 0 : *std::max_element(all.begin(), all.end());
}

double lowest(const std::vector<double>& all) {
    return all.empty() ? 0 : *std::min_element(all.begin(), all.end());
}

/// Makers write the base frequency behind the name: "… @ 2.10GHz".
double frequencyInName(const std::string& name) {
    const std::size_t at = name.rfind("@ ");
    if (at == std::string::npos || !name.ends_with("GHz")) {
        return 0;
    }
    return decimalOf(name.data() + at + 2, name.data() + name.size()) * kMegahertzPerGigahertz;
}

double firstKnown(std::initializer_list<double> candidates) {
    const auto* const known =
        std::find_if(candidates.begin(), candidates.end(), [](double f) { return f > 0; });
    return known == candidates.end() ? 0 : *known;
}

void describeIdentity(const Facts& facts, const ProcessorReport& report, pwr::CPUMetadata& cpu) {
    const auto numberIn = [&](const char* name) {
        const auto fact = facts.find(name);
        return fact == facts.end() ? 0 : numberOf(fact->second);
    };
    if (report.family != 0) {
        cpu.setFMS(static_cast<pw_u8_t>(report.family), static_cast<pw_u8_t>(report.model),
                   static_cast<pw_u8_t>(report.stepping));
    } else {
        cpu.setFMS(static_cast<pw_u8_t>(numberIn("cpu family")), static_cast<pw_u8_t>(numberIn("model")),
                   static_cast<pw_u8_t>(numberIn("stepping")));
    }
    for (const KeptFact& kept : kKeptFacts) {
        const auto fact = facts.find(kept.fact);
        if (fact != facts.end() && !fact->second.empty()) {
            cpu.addMetadataValue(kept.name, fact->second);
        }
    }
    if (facts.count("vendor_id") == 0 && !report.vendor.empty()) {
        cpu.addMetadataValue("vendor", report.vendor);
    }
}

void describeFrequencies(const MachineFiles& machine, const Facts& facts, const ProcessorReport& report,
                         const ProcessorSettings& settings, pwr::CPUMetadata& cpu) {
    const std::vector<double> maxima = frequenciesOf(machine, "cpuinfo_max_freq");
    const auto current = facts.find("cpu MHz");
    // Only a processor whose frequency nobody governs runs at its base frequency now.
    const double fixed =
        current != facts.end() && maxima.empty()
            ? decimalOf(current->second.data(), current->second.data() + current->second.size())
            : 0;
    const auto name = facts.find("model name");
    const double base = firstKnown({highest(frequenciesOf(machine, "base_frequency")), report.baseMHz,
                                    frequencyInName(name != facts.end() ? name->second : report.brand),
                                    settings.nominalMHz, fixed});
    cpu.busFreq = static_cast<float>(report.busMHz);
    cpu.lfmFreq = static_cast<float>(lowest(frequenciesOf(machine, "cpuinfo_min_freq")));
    cpu.hfmFreq = static_cast<float>(firstKnown({highest(maxima), report.maximumMHz}));
    cpu.baseOpFreq = static_cast<float>(base);
}

void describeMicrocode(const MachineFiles& machine, const Facts& facts, const ProcessorSettings& settings,
                       pwr::CPUMetadata& cpu) {
    const std::string folder = "/sys/devices/system/cpu/cpu0/microcode/";
    const auto fact = facts.find("microcode");
    cpu.microcodeRevision =
        numberOf(fact != facts.end() ? fact->second : textOf(machine, folder + "version"));
    cpu.microcodeRevision = cpu.microcodeRevision != 0 ? cpu.microcodeRevision : settings.microcodeRevision;
    cpu.platformId = numberOf(textOf(machine, folder + "processor_flags"));
    cpu.platformId = cpu.platformId != 0 ? cpu.platformId : settings.platformId;
}

/// "yes" or "no" with the processor, and the hypervisor's own name, or "yes", with the platform.
void describeHypervisor(const MachineFiles& machine, const Facts& facts, const ProcessorReport& report,
                        pwr::CPUMetadata& cpu, pwr::SystemMetadata& system) {
    const auto flags = facts.find("flags");
    if (flags == facts.end() && !report.isHypervisorKnown) {
        return;
    }
    const bool isFlagged =
        flags != facts.end() && (" " + flags->second + " ").find(" hypervisor ") != std::string::npos;
    const bool hasHypervisor = isFlagged || report.hasHypervisor;
    cpu.addMetadataValue("hypervisor", hasHypervisor ? "yes" : "no");
    if (hasHypervisor) {
        const std::string type = textOf(machine, "/sys/hypervisor/type");
        const std::string name = type.empty() ? report.hypervisor : type;
        system.platformSpecifiers.emplace_back("hypervisor", name.empty() ? "yes" : name);
    }
}

} // namespace

void describeProcessor(const MachineFiles& machine, bool isLive, pwr::SystemMetadata& system) {
    const Facts facts = factsOf(textOf(machine, "/proc/cpuinfo"), ':');
    const ProcessorReport report = isLive ? pwr::platform::processorReport() : ProcessorReport{};
    const ProcessorSettings settings = isLive ? pwr::platform::processorSettings() : ProcessorSettings{};
    auto cpu = std::make_unique<pwr::CPUMetadata>();
    describeIdentity(facts, report, *cpu);
    describeFrequencies(machine, facts, report, settings, *cpu);
    describeMicrocode(machine, facts, settings, *cpu);
    describeHypervisor(machine, facts, report, *cpu, system);
    const auto name = facts.find("model name");
    system.platformName = name != facts.end() && !name->second.empty() ? name->second : report.brand;
    cpu->setDisplayName(system.platformName);
    cpu->buildTopology(topologyText(machine, isLive), 0);
    system.setPlatformMetadata(pwr::PlatformType::CPU, cpu.release());
}

} // namespace tarnwell
