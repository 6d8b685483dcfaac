#include "common/plugin/plugin_capability.h"

PluginCapability::PluginCapability(const std::string& name, const std::string& description)
    : m_name(name), m_description(description) {}

void PluginCapability::addGroup(const std::string& group) {
    m_groups.insert(group);
}

void PluginCapability::setUnavailable(const std::string& reason, const std::string& fix) {
    m_available = false;
    m_reason = reason;
    m_fix = fix;
}
