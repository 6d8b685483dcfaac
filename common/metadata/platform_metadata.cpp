#include "common/metadata/platform_metadata.h"

#include <utility>

namespace pwr {

PlatformMetadata::PlatformMetadata(std::string specifierType) : m_specifierType(std::move(specifierType)) {}

PlatformMetadata::~PlatformMetadata() = default;

void PlatformMetadata::addSpecifierValue(const std::string& value) {
    m_specifierValues.push_back(value);
}

void PlatformMetadata::eraseSpecifierValue(pw_u16_t index) {
    if (index < m_specifierValues.size()) {
        m_specifierValues.erase(m_specifierValues.begin() + index);
    }
}

void PlatformMetadata::addMetadataValue(const std::string& name, const std::string& value) {
    m_metadataValues.insert_or_assign(name, value);
}

std::string PlatformMetadata::getMetadataValue(const std::string& name) const {
    const auto found = m_metadataValues.find(name);
    return found == m_metadataValues.end() ? std::string() : found->second;
}

} // namespace pwr
