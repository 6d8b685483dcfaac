#include "common/model/attribute.h"

#include <algorithm>
#include <memory>

#include "common/model/data_handle_provider.h"
#include "common/plugin/logger.h"

namespace pwr {

namespace {

template <class Iterator> Iterator findPlace(Iterator first, Iterator last, const Attribute* attribute) {
    return std::lower_bound(first, last, attribute->getId(),
                            [](const auto& value, std::uint64_t id) { return value.first->getId() < id; });
}

} // namespace

AttributeDescription::AttributeDescription(const std::string& name, const std::string& shortName,
                                           DataType dataType, const Quantity* quantity)
    : Description(DescriptionType::ATTRIBUTE, name, shortName), m_dataType(dataType), m_quantity(quantity) {}

Attribute::Attribute(const AttributeDescription& description)
    : DataHandle(description, DataHandleType::ATTRIBUTE), m_dataType(description.getDataType()),
      m_quantity(description.getQuantity()) {}

const Attribute* Attribute::create(const AttributeDescription& description) {
    return DataHandleProvider::adopt(std::unique_ptr<Attribute>(new Attribute(description)));
}

AttributeValueManager::AttributeValueManager() = default;
AttributeValueManager::AttributeValueManager(const AttributeValueManager&) = default;
AttributeValueManager& AttributeValueManager::operator=(const AttributeValueManager&) = default;
AttributeValueManager::~AttributeValueManager() = default;

int AttributeValueManager::setAttributeValue(const Attribute* attribute, const Data& value) {
    if (attribute == nullptr) {
        logWarning("WARNING: Cannot set an attribute value without an attribute\n");
        return 1;
    }
    if (value.getType() != attribute->getDataType()) {
        logWarning("WARNING: Attribute %s takes values of type %u, not %u\n", attribute->getName().c_str(),
                   static_cast<unsigned>(attribute->getDataType()), static_cast<unsigned>(value.getType()));
        return 1;
    }
    const auto place = findPlace(m_values.begin(), m_values.end(), attribute);
    if (place != m_values.end() && place->first == attribute) {
        place->second = value;
    } else {
        m_values.emplace(place, attribute, value);
    }
    return 0;
}

const Data* AttributeValueManager::getAttributeValue(const Attribute* attribute) const {
    if (attribute == nullptr) {
        return nullptr;
    }
    const auto place = findPlace(m_values.begin(), m_values.end(), attribute);
    return place != m_values.end() && place->first == attribute ? &place->second : nullptr;
}

void AttributeValueManager::clear_i() noexcept {
    m_values.clear();
}

DynamicAttributeValueManager::DynamicAttributeValueManager() = default;
DynamicAttributeValueManager::DynamicAttributeValueManager(const DynamicAttributeValueManager&) = default;
DynamicAttributeValueManager& DynamicAttributeValueManager::operator=(const DynamicAttributeValueManager&) =
    default;
DynamicAttributeValueManager::~DynamicAttributeValueManager() = default;

void DynamicAttributeValueManager::clear() {
    clear_i();
}

} // namespace pwr
