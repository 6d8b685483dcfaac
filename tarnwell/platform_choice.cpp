#include "common/config/platform.h"
#include "common/config/tw_configfile_parser.h"
#include "common/metadata/cpu_metadata.h"
#include "common/metadata/cxh_metadata.h"
#include "common/metadata/system_metadata.h"
#include "common/metadata/taf_metadata.h"
#include "tarnwell/hardware_description.h"

#include <algorithm>
#include <list>

namespace tarnwell {
namespace {

/// The platforms found, each with what it was recognised by: the first that found it.
class PlatformList {
public:
    void addOf(pwr::PlatformMetadata& object, pwr::SystemMetadata& system) {
        object.getPlatformNames(pwr::TWConfigFileParser::instance(), m_names, system);
        m_types.resize(m_names.size(), object.getSpecifierType());
    }
    void add(const std::string& type, const std::string& name) {
        if (std::find(m_names.begin(), m_names.end(), name) == m_names.end()) {
            m_names.push_back(name);
            m_types.push_back(type);
        }
    }
    /// As "TYPE=NAME,TYPE=NAME". What another one descends from is left out: that one inherits what is wanted of it.
    std::string text() const {
        std::string text;
        auto type = m_types.begin();
        for (const std::string& name : m_names) {
            if (!isInherited_i(name)) {
                text += (text.empty() ? "" : ",") + *type + "=" + name;
            }
            ++type;
        }
        return text;
    }

private:
    bool isInherited_i(const std::string& name) const {
        return std::any_of(m_names.begin(), m_names.end(), [&name](const std::string& other) {
            const pwr::Platform* at = pwr::TWConfigFileParser::instance()->findPlatform(other)->getParent();
            while (at != nullptr && at->getName() != name) {
                at = at->getParent();
            }
            return at != nullptr;
        });
    }

    std::list<std::string> m_names;
    std::vector<std::string> m_types; ///< of each name
};

} // namespace

std::string choosePlatforms(pwr::SystemMetadata& system) {
    PlatformList platforms;
    // Objects of its own: being asked makes them fill in names, which the saved record shall not have.
    if (const pwr::CPUMetadata* const known = system.getCPUMetadata(); known != nullptr) {
        pwr::CPUMetadata processor;
        processor.setFMS(known->getFamily(), known->getModel(), known->getStepping());
        platforms.addOf(processor, system);
    }
    pwr::CXHMetadata chipset;
    platforms.addOf(chipset, system);
    for (const auto& [type, value] : system.platformSpecifiers) {
        std::string name;
        if (pwr::TWConfigFileParser::instance()->getPlatformName(name, {type, value}) == 0) {
            platforms.add(type, name);
        }
    }
    pwr::TAFMetadata telemetry;
    platforms.addOf(telemetry, system);
    const std::string text = platforms.text();
    return text.empty() ? "ALL=ALL" : text;
}

} // namespace tarnwell
