#include "common/model/data_descriptor.h"

#include <memory>

#include "common/model/data_handle_provider.h"

namespace pwr {

namespace {

class DataDescriptorDescription : public Description {
public:
    DataDescriptorDescription(const std::string& name, const std::string& shortName)
        : Description(DescriptionType::DATA_DESCRIPTOR, name, shortName) {}
};

} // namespace

DataDescriptor::DataDescriptor(const Description& description, const std::optional<Data>& value)
    : DataHandle(description, DataHandleType::DATA_DESCRIPTOR), m_value(value) {}

DataDescriptorBuilder::DataDescriptorBuilder(const std::string& name) : m_name(name) {}

DataDescriptorBuilder& DataDescriptorBuilder::setFieldName(const std::string& fieldName) {
    m_fieldName = fieldName;
    return *this;
}

DataDescriptorBuilder& DataDescriptorBuilder::setShortName(const std::string& shortName) {
    m_shortName = shortName;
    return *this;
}

DataDescriptorBuilder& DataDescriptorBuilder::setDescription(const std::string& description) {
    m_description = description;
    return *this;
}

DataDescriptorBuilder& DataDescriptorBuilder::setHeader(const std::string& header) {
    m_header = header;
    return *this;
}

DataDescriptorBuilder& DataDescriptorBuilder::setValue(const Data& value) {
    m_value.reset();
    if (value.isSet() && value.isValid()) {
        m_value = value;
    }
    return *this;
}

const DataDescriptor* DataDescriptorBuilder::build() const {
    DataDescriptorDescription description(m_name, m_shortName);
    description.setDescription(m_description);
    description.setHeader(m_header);
    if (m_fieldName) {
        description.setFieldName(*m_fieldName);
    }
    return DataHandleProvider::adopt(
        std::unique_ptr<DataDescriptor>(new DataDescriptor(description, m_value)));
}

} // namespace pwr
