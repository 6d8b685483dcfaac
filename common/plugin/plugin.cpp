#include "common/plugin/plugin.h"

#include <algorithm>

Plugin::Plugin(const std::string& name) : m_name(name) {}

Plugin::~Plugin() = default;

int Plugin::initialize() {
    return 0;
}

int Plugin::shutdown() {
    return 0;
}

int Plugin::setOption(const std::string& /*key*/, const std::string& /*value*/) {
    return 1;
}

std::vector<const PluginCapability*> Plugin::getCapabilities() const {
    std::vector<const PluginCapability*> capabilities;
    capabilities.reserve(m_capabilities.size());
    for (const auto& capability : m_capabilities) {
        capabilities.push_back(capability.get());
    }
    return capabilities;
}

int Plugin::addCapability(PluginCapability* capability) {
    if (capability == nullptr ||
        std::any_of(m_capabilities.begin(), m_capabilities.end(),
                    [&](const auto& known) { return known->getName() == capability->getName(); })) {
        return 1;
    }
    m_capabilities.emplace_back(capability);
    return 0;
}
