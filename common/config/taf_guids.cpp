#include "common/config/taf_guids.h"

#include <algorithm>

#include "common/config/parser.h"
#include "common/config/specifier_values.h"
#include "common/plugin/logger.h"
#include "common/plugin/plugin_environment.h"
#include "common/pw_utils.h"

namespace pwr {

bool warnOfDeprecatedGUID(const Parser& parser, const std::pair<std::string, std::string>& specifier) {
    const auto& platforms = parser.getPlatforms();
    pw_u32_t guid = 0;
    if (specifier.first != "TAF" || !readGUIDValue(specifier.second, guid) ||
        std::none_of(platforms.begin(), platforms.end(),
                     [guid](const auto& entry) { return entry.second->isDeprecatedGUID(guid); })) {
        return false;
    }
    logWarning("WARNING: Deprecated GUID detected: 0x%x\n", guid);
    logWarning("Please check the Release Notes for the Tarnwell version that supports this GUID.\n");
    return true;
}

void publishDeprecatedGUIDs(const Parser& parser) {
    for (const auto& [name, platform] : parser.getPlatforms()) {
        if (!platform->getDeprecatedGUIDs().empty()) {
            g_pluginEnvironment->setDeprecatedTAFGUIDs(name, platform->getDeprecatedGUIDs());
        }
    }
}

void warnOfMissingGUIDs(const Platform& platform, const std::set<pw_u32_t>& machineGUIDs) {
    for (const pw_u32_t guid : platform.getTAFGUIDs()) {
        if (machineGUIDs.count(guid) == 0 && !platform.isDeprecatedGUID(guid)) {
            logWarning("WARNING: TAF GUID 0x%x missing.\n", guid);
        }
    }
}

bool readEmulatedGUID(const std::string& text, pw_u32_t& guid) {
    if (extract_number_i(text, guid) != 0) {
        logError("ERROR: Could not parse given emulated TAF GUID\n");
        return false;
    }
    return true;
}

} // namespace pwr
