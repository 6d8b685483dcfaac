#include "common/metadata/platform_metadata.h"

#include "common/metadata/serializer.h"

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

void PlatformMetadata::serializePlatformMetadata(Serializer& out) const {
    // The only count of the format in 32 bits.
    out.write(m_specifierType, m_displayName, m_specifierValues,
              static_cast<pw_u32_t>(m_metadataValues.size()));
    for (const auto& [name, value] : m_metadataValues) {
        out.write(name, value);
    }
}

int PlatformMetadata::deserializePlatformMetadata(Serializer& in) {
    m_specifierValues.clear();
    m_metadataValues.clear();
    pw_u16_t specifiers = 0;
    if (!in.read_text(m_specifierType) || !in.read_text(m_displayName) || in.read(specifiers) == 0) {
        return 1;
    }
    for (unsigned i = 0; i < specifiers; ++i) {
        std::string value;
        if (!in.read_text(value)) {
            return 1;
        }
        m_specifierValues.push_back(std::move(value));
    }
    pw_u32_t values = 0;
    if (in.read(values) == 0) {
        return 1;
    }
    for (pw_u32_t i = 0; i < values; ++i) {
        std::string name;
        std::string value;
        if (!in.read_text(name) || !in.read_text(value)) {
            return 1;
        }
        m_metadataValues.insert_or_assign(m_metadataValues.end(), std::move(name), std::move(value));
    }
    return 0;
}

} // namespace pwr
