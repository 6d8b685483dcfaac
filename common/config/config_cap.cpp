#include "common/config/config_cap.h"

namespace pwr {

ConfigCap::ConfigCap(const std::string& name, const std::string& configfilePrefix)
    : m_name(name), m_configfilePrefix(configfilePrefix) {}

} // namespace pwr
