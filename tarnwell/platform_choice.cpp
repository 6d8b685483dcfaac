#include "common/config/tw_configfile_parser.h"
#include "common/metadata/cpu_metadata.h"
#include "common/metadata/cxh_metadata.h"
#include "common/metadata/system_metadata.h"
#include "common/metadata/taf_metadata.h"
#include "tarnwell/hardware_description.h"

#include <list>

namespace tarnwell {
namespace {

/// Appends "TYPE=NAME" for each platform that is not there yet.
class PlatformList {
public:
    void add(const std::string& type, const std::list<std::string>& names) {
        for (const std::string& name : names) {
            if (m_names.insert(name).second) {
                m_text += (m_text.empty() ? "" : ",") + type + "=" + name;
            }
        }
    }
    const std::string& text() const { return m_text; }

private:
    std::set<std::string> m_names;
    std::string m_text;
};

void addOf(pwr::PlatformMetadata& object, pwr::SystemMetadata& system, PlatformList& platforms) {
    std::list<std::string> names;
    if (object.getPlatformNames(pwr::TWConfigFileParser::instance(), names, system) == 0) {
        platforms.add(object.getSpecifierType(), names);
    }
}

} // namespace

std::string choosePlatforms(pwr::SystemMetadata& system) {
    PlatformList platforms;
    // Objects of its own: being asked makes them fill in names, which the saved record shall not have.
    if (const pwr::CPUMetadata* const known = system.getCPUMetadata(); known != nullptr) {
        pwr::CPUMetadata processor;
        processor.setFMS(known->getFamily(), known->getModel(), known->getStepping());
        addOf(processor, system, platforms);
    }
    pwr::CXHMetadata chipset;
    addOf(chipset, system, platforms);
    pwr::TAFMetadata telemetry;
    addOf(telemetry, system, platforms);
    for (const auto& [type, value] : system.platformSpecifiers) {
        std::string name;
        if (pwr::TWConfigFileParser::instance()->getPlatformName(name, {type, value}) == 0) {
            platforms.add(type, {name});
        }
    }
    return platforms.text().empty() ? "ALL=ALL" : platforms.text();
}

} // namespace tarnwell
