#include "common/model/field.h"

#include <memory>

#include "common/model/data_handle_provider.h"

namespace pwr {

FieldDescription::FieldDescription(const std::string& name, const std::string& shortName, DataType dataType,
                                   const Quantity* quantity)
    : Description(DescriptionType::FIELD, name, shortName), m_dataType(dataType), m_quantity(quantity) {}

Field::Field(const FieldDescription& description)
    : DataHandle(description, DataHandleType::FIELD), m_dataType(description.getDataType()),
      m_quantity(description.getQuantity()) {}

const Field* Field::create(const FieldDescription& description) {
    return DataHandleProvider::adopt(std::unique_ptr<Field>(new Field(description)));
}

} // namespace pwr
