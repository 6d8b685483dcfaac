#include "common/metadata/cpu_metadata.h"
#include "common/metadata/cxh_metadata.h"
#include "common/metadata/system_metadata.h"
#include "common/topology/top_tree.h"
#include "tarnwell/info_document.h"

#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <utility>

namespace tarnwell {
namespace {

using Json = nlohmann::ordered_json;

constexpr pw_u64_t kLatestTime = 253402300799999999; // the end of the year 9999: later years have no ISO text

/// The decimal number that people wrote or would write: 2400.1, not the nearest double of the nearest float.
Json number(float value) {
    if (!std::isfinite(value)) {
        return nullptr;
    }
    std::array<char, 64> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value);
    double shortest = 0;
    std::from_chars(text.data(), end.ptr, shortest);
    return shortest;
}

Json isoTime(pw_u64_t microseconds) {
    using namespace std::chrono;
    if (microseconds == 0 || microseconds > kLatestTime) {
        return nullptr;
    }
    const sys_seconds moment{seconds(static_cast<std::int64_t>(microseconds / 1000000))};
    const sys_days day = floor<days>(moment);
    const year_month_day date{day};
    const hh_mm_ss time{moment - day};
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d.%06uZ",
                  static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                  static_cast<unsigned>(date.day()), static_cast<int>(time.hours().count()),
                  static_cast<int>(time.minutes().count()), static_cast<int>(time.seconds().count()),
                  static_cast<unsigned>(microseconds % 1000000));
    return text.data();
}

std::string versionText(pw_u32_t packed) {
    return std::to_string(packed >> 16) + "." + std::to_string((packed >> 8) & 0xFF) + "." +
           std::to_string(packed & 0xFF);
}

Json versionOf(pw_u32_t packed) {
    return packed == 0 ? Json(nullptr) : Json(versionText(packed));
}

/// The clock's ticks are exact; the time of day may have been set while collecting.
Json durationOf(const pwr::SystemMetadata& system) {
    if (system.stopTSC > system.startTSC && system.twaClockFreq > 0.0F) {
        return static_cast<double>(system.stopTSC - system.startTSC) /
               (static_cast<double>(system.twaClockFreq) * 1e6);
    }
    if (system.startTimeval != 0 && system.stopTimeval > system.startTimeval) {
        return static_cast<double>(system.stopTimeval - system.startTimeval) / 1e6;
    }
    return nullptr;
}

Json timesOf(const pwr::SystemMetadata& system) {
    return {
        {"start_ticks", system.startTSC},
        {"stop_ticks", system.stopTSC},
        {"duration_seconds", durationOf(system)},
        {"start_timeval", system.startTimeval},
        {"start_time", isoTime(system.startTimeval)},
        {"stop_timeval", system.stopTimeval},
        {"stop_time", isoTime(system.stopTimeval)},
        {"program_start_timeval", system.programStartTimeval},
        {"program_start_time", isoTime(system.programStartTimeval)},
        {"program_stop_timeval", system.programStopTimeval},
        {"program_stop_time", isoTime(system.programStopTimeval)},
    };
}

Json versionsOf(const pwr::SystemMetadata& system) {
    return {
        {"app_version", versionOf(system.appVersion)},
        {"app_version_packed", system.appVersion},
        {"app_build_date", system.appBuildDate},
        {"non_numeric_version", system.nonNumericVersion},
        {"build_ref", system.buildRef},
        {"package_type", system.packageType},
        {"driver_version", versionOf(system.driverVersion)},
        {"driver_version_packed", system.driverVersion},
        {"driver_build_date", system.driverBuildDate},
        {"scu_version", versionOf(system.scuVersion)},
        {"scu_version_packed", system.scuVersion},
    };
}

Json topologyOf(const pwr::CPUMetadata& cpu) {
    const pwr::TopTree& tree = cpu.getCPUTopology();
    Json topology = {{"packages", tree.getNumPackages()}, {"dies", tree.getNumDies()},
                     {"modules", tree.getNumModules()},   {"cores", tree.getNumCores()},
                     {"threads", tree.getNumThreads()},   {"processors", Json::array()},
                     {"hwq_mapping", Json::array()},      {"changes", Json::array()}};
    std::vector<const pwr::TNode*> threads;
    tree.getAllThreads(threads);
    for (const pwr::TNode* thread : threads) {
        Json processor = {{"id", thread->getID()}, {"name", thread->getFullyQualifiedName()}};
        const auto* core = dynamic_cast<const pwr::TNodeCore*>(thread->getParent());
        processor["core_model_and_type"] =
            core == nullptr ? Json(nullptr) : Json(core->getCoreModelIDAndType());
        topology["processors"].push_back(std::move(processor));
    }
    for (const auto& [key, value] : tree.getHWQMapping()) {
        topology["hwq_mapping"].push_back({{"key", key}, {"value", value}});
    }
    for (const pwr::TopologyChange& change : cpu.getTopologyChanges()) {
        topology["changes"].push_back({{"ticks", change.getTimestamp()},
                                       {"action", change.getActionName()},
                                       {"thread", change.getLogicalProcessorID()},
                                       {"core", change.getCoreID()},
                                       {"package", change.getPackageID()},
                                       {"module", change.getModuleID()}});
    }
    return topology;
}

Json processorOf(const pwr::CPUMetadata& cpu) {
    return {
        {"family", cpu.getFamily()},
        {"model", cpu.getModel()},
        {"stepping", cpu.getStepping()},
        {"bus_mhz", number(cpu.busFreq)},
        {"lowest_mhz", number(cpu.lfmFreq)},
        {"highest_mhz", number(cpu.hfmFreq)},
        {"base_mhz", number(cpu.baseOpFreq)},
        {"platform_id", cpu.platformId},
        {"microcode_revision", cpu.microcodeRevision},
        {"topology", topologyOf(cpu)},
    };
}

Json chipsetOf(const pwr::CXHMetadata& chipset) {
    Json registers = Json::array();
    for (const auto& [id, value] : chipset.getRegisterEntries()) {
        registers.push_back({{"id", id}, {"value", value}});
    }
    return {
        {"registers", std::move(registers)},
        {"low_power_modes", chipset.getLPMConfigurations()},
        {"energy_reporting", chipset.getEnergyReportingConfiguration()},
    };
}

Json platformsOf(const pwr::SystemMetadata& system) {
    Json platforms = Json::array();
    for (const auto& [type, object] : system.platformMetadata) {
        if (object == nullptr) {
            continue;
        }
        const auto* cpu = dynamic_cast<const pwr::CPUMetadata*>(object.get());
        const auto* chipset = dynamic_cast<const pwr::CXHMetadata*>(object.get());
        platforms.push_back({{"type", static_cast<unsigned>(type)},
                             {"display_name", object->getDisplayName()},
                             {"specifier_type", object->getSpecifierType()},
                             {"specifier_values", object->getSpecifierValues()},
                             {"requires_specifier", object->checkRequiresConfigSpecifier()},
                             {"specifier_found", object->checkConfigSpecifierFound()},
                             {"values", object->getMetadataValues()},
                             {"cpu", cpu == nullptr ? Json(nullptr) : processorOf(*cpu)},
                             {"chipset", chipset == nullptr ? Json(nullptr) : chipsetOf(*chipset)}});
    }
    return platforms;
}

Json devicesOf(const pwr::SystemMetadata& system) {
    Json devices = Json::array();
    for (const pwr::PCIDevice& device : system.pciDevices) {
        std::array<char, 32> address{};
        std::snprintf(address.data(), address.size(), "%04x:%02x:%02x.%x",
                      static_cast<unsigned>(device.segment), static_cast<unsigned>(device.bus),
                      static_cast<unsigned>(device.device), static_cast<unsigned>(device.function));
        devices.push_back({{"address", address.data()},
                           {"segment", device.segment},
                           {"bus", device.bus},
                           {"device", device.device},
                           {"function", device.function},
                           {"vendor_id", device.vendor},
                           {"device_id", device.deviceId},
                           {"name", device.name}});
    }
    return devices;
}

Json endpointsOf(const pwr::SystemMetadata& system) {
    Json endpoints = Json::array();
    for (const auto& [id, endpoint] : system.tafEndpoints) {
        endpoints.push_back({{"id", id},
                             {"address", pw_u64_t{endpoint.address}},
                             {"guid", pw_u32_t{endpoint.guid}},
                             {"size", pw_u32_t{endpoint.size}},
                             {"endpoint_id", pw_u16_t{endpoint.endpoint_id}},
                             {"sample_count", pw_u16_t{endpoint.sample_count}},
                             {"collection_type", pw_u16_t{endpoint.collection_type}}});
    }
    return endpoints;
}

Json pairsOf(const std::vector<std::pair<std::string, std::string>>& pairs) {
    Json list = Json::array();
    for (const auto& [name, value] : pairs) {
        list.push_back({{"name", name}, {"value", value}});
    }
    return list;
}

Json streamsOf(const pwr::SystemMetadata& system) {
    Json streams = Json::array();
    for (const auto& [id, clock] : system.sidMap) {
        streams.push_back({{"id", id}, {"clock_uuid", clock}});
    }
    return streams;
}

} // namespace

Json clockDocument(const pwr::TWClockSync& sync) {
    return {
        {"name", sync.clockName},
        {"uuid", sync.clockUUID},
        {"mhz", number(sync.clockFrequency)},
        {"ticks", sync.clockValue},
        {"default_clock_name", sync.defaultClockName},
        {"default_clock_uuid", sync.defaultClockUUID},
        {"default_clock_mhz", number(sync.defaultClockFrequency)},
        {"default_clock_ticks", sync.defaultClockValue},
    };
}

Json systemDocument(const pwr::SystemMetadata& system) {
    Json document = {
        {"host_name", system.hostName},
        {"os_name", system.osName},
        {"os_type", system.osType},
        {"os_version", system.osVersion},
        {"platform_name", system.platformName},
        {"command_line", system.cmdLine},
        {"polling_interval_ms", system.pollingInterval},
        {"produced_samples", system.producedSamples},
        {"dropped_samples", system.droppedSamples},
        {"clock_mhz", number(system.twaClockFreq)},
    };
    document.update(timesOf(system));
    document.update(Json{
        {"immediate_mode", system.immediateMode},
        {"low_overhead_mode", system.lowOverheadMode},
        {"continuous_quantum_seconds", system.continuousQuantum},
        {"hyper_v_enabled", system.hyperVEnabled},
        {"vsm_enabled", system.vsmEnabled},
        {"hvci_enabled", system.hvciEnabled},
        {"vtio_enabled", system.vtioEnabled},
        {"edram_capable", system.edramCapable},
        {"integrated_graphics_id", system.igfxId},
        {"platform_specifiers", pairsOf(system.platformSpecifiers)},
        {"platforms", platformsOf(system)},
        {"pci_devices", devicesOf(system)},
        {"streams", streamsOf(system)},
        {"aggregator_endpoints", endpointsOf(system)},
    });
    document.update(versionsOf(system));
    Json clocks = Json::array();
    for (const pwr::TWClockSync& sync : system.clockSyncs) {
        clocks.push_back(clockDocument(sync));
    }
    document["clocks"] = std::move(clocks);
    return document;
}

} // namespace tarnwell
