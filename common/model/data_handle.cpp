#include "common/model/data_handle.h"

#include "common/model/data_handle_provider.h"
#include "common/model/description.h"
#include "common/plugin/logger.h"

namespace pwr {

DataHandle::DataHandle(const Description& description, DataHandleType handleType)
    : m_name(description.getName()), m_fieldName(description.getFieldName()),
      m_shortName(description.getShortName()), m_description(description.getDescription()),
      m_header(description.getHeader()), m_handleType(handleType) {}

DataHandle::~DataHandle() = default;

int DataHandle::get(std::uint64_t id, const DataHandle*& out) {
    const UniqueId* const found = DataHandleProvider::findId(id);
    if (found == nullptr) {
        logWarning("WARNING: Handle id %llu not found in UniqueId map\n",
                   static_cast<unsigned long long>(id));
        return 1;
    }
    if (found->getIdType() != UniqueIdType::DATA_HANDLE) {
        logWarning("WARNING: UniqueId isn't a DataHandle type\n");
        return 1;
    }
    out = static_cast<const DataHandle*>(found);
    return 0;
}

UniqueIdType DataHandle::getIdType() const {
    return UniqueIdType::DATA_HANDLE;
}

std::string DataHandle::getQualifiedName() const {
    return m_name;
}

} // namespace pwr
