#include "common/metadata/system_metadata_text.h"

#include "common/metadata/cpu_metadata.h"
#include "common/metadata/system_metadata.h"

#include <charconv>
#include <cstddef>
#include <cstdio>
#include <iterator>
#include <locale>
#include <ostream>
#include <sstream>

namespace pwr {

namespace system_text {

std::string versionText(pw_u32_t version) {
    return std::to_string(version >> 16) + "." + std::to_string(version >> 8 & 0xFF) + "." +
           std::to_string(version & 0xFF);
}

std::string megahertzText(float megahertz) {
    char buffer[128]; // the smallest number takes its 45 decimals and a bit
    const auto end = std::to_chars(buffer, std::end(buffer), megahertz, std::chars_format::fixed);
    return std::string(buffer, end.ptr);
}

std::string hexText(pw_u32_t value, int width) {
    char buffer[16];
    return std::string(buffer, static_cast<std::size_t>(std::snprintf(buffer, sizeof buffer, "%0*x", width,
                                                                      static_cast<unsigned>(value))));
}

std::string joined(const std::vector<std::string>& parts, const char* separator) {
    std::string text;
    for (const std::string& part : parts) {
        text += text.empty() ? part : separator + part;
    }
    return text;
}

std::string deviceName(const PCIDevice& device) {
    return device.name.empty() ? hexText(device.vendor, 4) + ":" + hexText(device.deviceId, 4) : device.name;
}

} // namespace system_text

namespace {

using system_text::hexText;
using system_text::megahertzText;
using system_text::versionText;

/// The record's text, line by line. Built aside, so that a caller's width, base or locale changes nothing.
class TextForm {
public:
    explicit TextForm(const SystemMetadata& system) : m_system(system), m_cpu(system.getCPUMetadata()) {}

    std::string text() {
        versions_i();
        frequencies_i();
        collection_i();
        lists_i();
        clocks_i();
        line_i("Package Type: ", m_system.packageType);
        line_i("PCI Devices: ");
        for (const PCIDevice& device : m_system.pciDevices) {
            line_i("\t", system_text::deviceName(device));
        }
        return m_text;
    }

private:
    void line_i(const char* label, const std::string& value = "") {
        m_text.append(label).append(value) += '\n';
    }
    void line_i(const char* label, pw_u64_t value) { line_i(label, std::to_string(value)); }
    void line_i(const char* label, float megahertz) { line_i(label, megahertzText(megahertz)); }

    void versions_i() {
        if (m_cpu != nullptr) {
            line_i("FMS: ", std::to_string(m_cpu->getFamily()) + "." + std::to_string(m_cpu->getModel()) +
                                "." + std::to_string(m_cpu->getStepping()));
        }
        line_i("App version: ", versionText(m_system.appVersion));
        line_i("App build date: ", m_system.appBuildDate);
        line_i("Driver version: ", versionText(m_system.driverVersion));
        line_i("Driver build date: ", m_system.driverBuildDate);
        line_i("SCU version: ", pw_u64_t{m_system.scuVersion});
        line_i("Platform name: ", m_system.platformName);
        line_i("Host name: ", m_system.hostName);
        line_i("OS name: ", m_system.osName);
        line_i("OS type: ", m_system.osType);
        line_i("OS version: ", m_system.osVersion);
    }

    void frequencies_i() {
        if (m_cpu != nullptr) {
            line_i("Bus freq (MHz): ", m_cpu->busFreq);
        }
        line_i("TWA clock freq (MHz): ", m_system.twaClockFreq);
        if (m_cpu != nullptr) {
            line_i("LFM freq (MHz): ", m_cpu->lfmFreq);
            line_i("HFM freq (MHz): ", m_cpu->hfmFreq);
            line_i("Base operating freq (MHz): ", m_cpu->baseOpFreq);
        }
    }

    void collection_i() {
        line_i("Start TSC: ", m_system.startTSC);
        line_i("Stop TSC: ", m_system.stopTSC);
        line_i("Start Timeval: ", m_system.startTimeval);
        line_i("Stop Timeval: ", m_system.stopTimeval);
        line_i("Polling interval (msecs): ", pw_u64_t{m_system.pollingInterval});
        line_i("Collection command line: ", system_text::joined(m_system.cmdLine, " "));
        line_i("Collected samples : ", std::to_string(m_system.producedSamples) +
                                           ", dropped samples: " + std::to_string(m_system.droppedSamples));
    }

    void lists_i() {
        for (const auto& [id, uuid] : m_system.sidMap) {
            line_i("\tsid[", std::to_string(id) + "] => uuid[" + uuid + "]");
        }
        line_i("Platform specifiers: ");
        for (const auto& [name, value] : m_system.platformSpecifiers) {
            line_i("\t", name + " => " + value);
        }
        line_i("TAF Endpoint to GUID Mappings: ");
        for (const auto& [endpoint, info] : m_system.tafEndpoints) {
            line_i("\tEndpoint: ", std::to_string(endpoint) + " => GUID: 0x" + hexText(info.guid));
        }
        if (m_cpu != nullptr) {
            line_i("Topology changes: ");
            std::ostringstream changes;
            changes.imbue(std::locale::classic());
            for (const TopologyChange& change : m_cpu->getTopologyChanges()) {
                changes << change;
            }
            m_text += changes.str();
        }
    }

    void clocks_i() {
        line_i("Synchronized clocks: ");
        std::size_t index = 0;
        for (const TWClockSync& clock : m_system.clockSyncs) {
            line_i("\tClock[", std::to_string(index++) + "]:");
            line_i("\t\tClock UUID: ", clock.clockUUID);
            line_i("\t\tClock Name: ", clock.clockName);
            line_i("\t\tClock Freq (MHz): ", clock.clockFrequency);
            line_i("\t\tClock Value: ", clock.clockValue);
            line_i("\t\tDefault Clock UUID: ", clock.defaultClockUUID);
            line_i("\t\tDefault Clock Name: ", clock.defaultClockName);
            line_i("\t\tDefault Clock Freq (MHz): ", clock.defaultClockFrequency);
            line_i("\t\tDefault Clock Value: ", clock.defaultClockValue);
        }
    }

    const SystemMetadata& m_system;
    const CPUMetadata* m_cpu;
    std::string m_text;
};

} // namespace

std::ostream& operator<<(std::ostream& out, const SystemMetadata& system) {
    return out << TextForm(system).text();
}

} // namespace pwr
