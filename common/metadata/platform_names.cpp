// Which platforms of the hardware description a machine is, for each kind of platform object.

#include <algorithm>
#include <utility>

#include "common/config/platform.h"
#include "common/config/specifier_values.h"
#include "common/config/statement.h"
#include "common/config/taf_guids.h"
#include "common/config/tw_configfile_parser.h"
#include "common/metadata/cpu_metadata.h"
#include "common/metadata/cxh_metadata.h"
#include "common/metadata/system_metadata.h"
#include "common/metadata/taf_metadata.h"
#include "common/plugin/logger.h"
#include "common/plugin/plugin_environment.h"

namespace pwr {

namespace {

std::string pciText(pw_u32_t vendor, pw_u32_t device) {
    return PCIConfigSpecifier(vendor, device).toString();
}

std::string guidText(pw_u32_t guid) {
    return TAFConfigSpecifier({guid}).toString();
}

} // namespace

int PlatformMetadata::getPlatformNames(TWConfigFileParser* parser, std::list<std::string>& names,
                                       SystemMetadata& system) {
    std::vector<std::string> values;
    setConfigSpecifierFound(false);
    if (parser != nullptr && initAndGetValue_i(system, values) == 0) {
        for (const std::string& value : values) {
            std::string name;
            if (parser->getPlatformName(name, {getSpecifierType(), value}) != 0) {
                continue;
            }
            setConfigSpecifierFound(true);
            if (std::find(names.begin(), names.end(), name) == names.end()) {
                names.push_back(name);
            }
        }
    }
    if (checkConfigSpecifierFound()) {
        return 0;
    }
    if (shouldPrintMessageOnNoMatch()) {
        logWarning("WARNING: the hardware description has no platform for %s %s\n",
                   getSpecifierType().c_str(), values.empty() ? "(none found)" : values.front().c_str());
    }
    return 1;
}

bool PlatformMetadata::shouldPrintMessageOnNoMatch() const {
    return checkRequiresConfigSpecifier();
}

int PlatformMetadata::initAndGetValue_i(const SystemMetadata& system, std::vector<std::string>& values) {
    values = getSpecifierValues();
    if (values.empty()) {
        for (const auto& [name, value] : system.platformSpecifiers) {
            if (name == getSpecifierType()) {
                values.push_back(value);
            }
        }
    }
    return values.empty() ? 1 : 0;
}

int CPUMetadata::initAndGetValue_i(const SystemMetadata& system, std::vector<std::string>& values) {
    const std::string family = std::to_string(m_family);
    const std::string model = std::to_string(m_model);
    if (getMetadataValue("CODE-NAME").empty()) {
        addMetadataValue("CODE-NAME", "FAMILY" + family + "-MODEL" + model);
    }
    if (getDisplayName().empty()) {
        setDisplayName("Processor family " + family + " model " + model);
    }
    if (PlatformMetadata::initAndGetValue_i(system, values) != 0) {
        values = {family + "." + model + "." + std::to_string(m_stepping)};
    }
    return 0;
}

bool CXHMetadata::setSpoofedCXH(const std::string& text) {
    PCIValue chipset;
    if (!readPCIValue(text, chipset)) {
        logWarning(
            "WARNING: invalid chipset value %s received: MUST be in format VENDOR=0x<id>,DEVICE=0x<id>\n",
            text.c_str());
        return false;
    }
    while (!getSpecifierValues().empty()) {
        eraseSpecifierValue(0);
    }
    addSpecifierValue(pciText(chipset.vendor, chipset.device));
    return true;
}

int CXHMetadata::initAndGetValue_i(const SystemMetadata& system, std::vector<std::string>& values) {
    if (PlatformMetadata::initAndGetValue_i(system, values) == 0) {
        return 0;
    }
    for (const PCIDevice& device : system.pciDevices) {
        std::string value = pciText(device.vendor, device.deviceId);
        if (std::find(values.begin(), values.end(), value) == values.end()) {
            values.push_back(std::move(value));
        }
    }
    return values.empty() ? 1 : 0;
}

bool TAFMetadata::setTAF(const std::string& text) {
    std::set<pw_u32_t> guids;
    ListItems items(text);
    for (std::string_view item; items.next(item);) {
        pw_u32_t guid = 0;
        if (!readEmulatedGUID(std::string(item), guid)) {
            return false;
        }
        guids.insert(guid);
    }
    if (guids.empty()) {
        pw_u32_t none = 0;
        return readEmulatedGUID(text, none); // nothing is no number, and says so
    }
    m_guids = std::move(guids);
    return true;
}

void TAFMetadata::retrieveGUIDs_i() {
    for (const pw_u32_t guid : g_pluginEnvironment->getLoadedTAFGUIDs()) {
        const pw_u32_t emulated = g_pluginEnvironment->getTAFEmulatedGUID(guid);
        m_guids.insert(emulated != 0 ? emulated : guid);
    }
}

int TAFMetadata::initAndGetValue_i(const SystemMetadata& /*system*/, std::vector<std::string>& values) {
    if (m_guids.empty()) {
        retrieveGUIDs_i();
    }
    while (!getSpecifierValues().empty()) {
        eraseSpecifierValue(0);
    }
    for (const pw_u32_t guid : m_guids) {
        addSpecifierValue(guidText(guid));
    }
    values = getSpecifierValues();
    return values.empty() ? 1 : 0;
}

int TAFMetadata::getPlatformNames(TWConfigFileParser* parser, std::list<std::string>& names,
                                  SystemMetadata& system) {
    const int result = PlatformMetadata::getPlatformNames(parser, names, system);
    for (const std::string& name : names) {
        if (const Platform* const platform = parser == nullptr ? nullptr : parser->findPlatform(name)) {
            warnOfMissingGUIDs(*platform, m_guids);
        }
    }
    return result;
}

bool TAFMetadata::shouldPrintMessageOnNoMatch() const {
    return !m_guids.empty();
}

} // namespace pwr
