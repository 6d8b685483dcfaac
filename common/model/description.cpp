#include "common/model/description.h"

namespace pwr {

Description::Description(const std::string& name, const std::string& shortName)
    : Description(DescriptionType::PLAIN, name, shortName) {}

Description::Description(DescriptionType type, const std::string& name, const std::string& shortName)
    : m_name(name), m_fieldName(name), m_shortName(shortName.empty() ? name : shortName), m_type(type) {}

Description::~Description() = default;

void Description::setFieldName(const std::string& fieldName) {
    m_fieldName = fieldName;
}

void Description::setDescription(const std::string& description) {
    m_description = description;
}

void Description::setHeader(const std::string& header) {
    m_header = header;
}

} // namespace pwr
