#include "common/metadata/operation_metadata.h"

namespace pwr {

// Emitted here, because on Windows a user who takes its address asks the library for it.
constexpr const char* CONSTANTOperationMetadata::c_operation; // NOLINT(readability-redundant-declaration)

OperationMetadata::OperationMetadata() : Metadata(__metadata_data_type::OPERATION) {}

OperationMetadata::OperationMetadata(std::string name, std::string operation, pw_u32_t size,
                                     std::string orgMsgTag, ValueList values)
    : Metadata(__metadata_data_type::OPERATION), m_name(std::move(name)), m_operation(std::move(operation)),
      m_size(size), m_orgMsgTag(std::move(orgMsgTag)), m_values(std::move(values)) {}

CONSTANTOperationMetadata::CONSTANTOperationMetadata(std::string name, ValueList values)
    : OperationMetadata(std::move(name), c_operation, 0, "", std::move(values)) {}

} // namespace pwr
