#include "common/config/platform.h"

#include <algorithm>
#include <utility>

#include "common/config/offered_cap.h"
#include "common/plugin/logger.h"

namespace pwr {

DeclaredCap::DeclaredCap(const Platform& declaringPlatform, std::string_view configfilePrefix)
    : platform(declaringPlatform), prefix(configfilePrefix) {}

InputMsg& DeclaredCap::getOrCreateMessage(std::string_view name) {
    if (InputMsg* const known = messages.find(name)) {
        return *known;
    }
    auto message = std::make_unique<InputMsg>(std::string(name), prefix);
    message->setPlatformPrefix(platform.getName());
    return messages.add(std::move(message));
}

Platform::Platform(const std::string& name) : m_name(name) {}
Platform::~Platform() = default;

void Platform::addChild(Platform& child) {
    child.m_parent = this;
    m_children.push_back(&child);
}

void Platform::addSpecifier(std::unique_ptr<ConfigSpecifier> specifier) {
    m_specifiers.push_back(std::move(specifier));
}

void Platform::addDeprecatedGUIDs(const std::vector<pw_u32_t>& guids) {
    m_deprecatedGUIDs.insert(m_deprecatedGUIDs.end(), guids.begin(), guids.end());
}

bool Platform::isDeprecatedGUID(pw_u32_t guid) const {
    return std::find(m_deprecatedGUIDs.begin(), m_deprecatedGUIDs.end(), guid) != m_deprecatedGUIDs.end();
}

std::vector<pw_u32_t> Platform::getTAFGUIDs() const {
    std::vector<pw_u32_t> guids;
    for (const auto& specifier : m_specifiers) {
        if (const auto* const taf = dynamic_cast<const TAFConfigSpecifier*>(specifier.get())) {
            guids.insert(guids.end(), taf->getGUIDs().begin(), taf->getGUIDs().end());
        }
    }
    return guids;
}

DeclaredCap& Platform::getOrCreateCap(std::string_view prefix) {
    DeclaredCap* const known = m_caps.find(prefix);
    return known != nullptr ? *known : m_caps.add(std::make_unique<DeclaredCap>(*this, prefix));
}

bool Platform::offers(std::string_view prefix) const {
    return m_caps.find(prefix) != nullptr || (m_parent != nullptr && m_parent->offers(prefix));
}

int Platform::getMessagesFor(OfferedCap& offered, const std::string& prefix) const {
    if (!findOfferedCap(*this, prefix, offered)) {
        logWarning("pwr::Platform::getMessagesFor called for prefix %s on platform %s\n", prefix.c_str(),
                   m_name.c_str());
        logWarning("combination of name %s prefix %s was NOT specified in config file!\n", m_name.c_str(),
                   prefix.c_str());
        return 1;
    }
    return 0;
}

} // namespace pwr
