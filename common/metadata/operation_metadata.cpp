#include "common/metadata/operation_metadata.h"

#include "common/metadata/handled_version.h"
#include "common/metadata/saved_version.h"
#include "common/metadata/value_pairs.h"
#include "common/plugin/logger.h"

#include <ostream>

namespace pwr {

namespace {

constexpr pw_u32_t c_firstVersionWithValues = packSavedVersion(2024, 3, 0);

} // namespace

// Emitted here, because on Windows a user who takes its address asks the library for it.
constexpr const char* CONSTANTOperationMetadata::c_operation; // NOLINT(readability-redundant-declaration)

OperationMetadata::OperationMetadata() : Metadata(__metadata_data_type::OPERATION) {}

OperationMetadata::OperationMetadata(std::string name, std::string operation, pw_u32_t size,
                                     std::string orgMsgTag, ValueList values)
    : Metadata(__metadata_data_type::OPERATION), m_name(std::move(name)), m_operation(std::move(operation)),
      m_size(size), m_orgMsgTag(std::move(orgMsgTag)), m_values(std::move(values)) {}

CONSTANTOperationMetadata::CONSTANTOperationMetadata(std::string name, ValueList values)
    : OperationMetadata(std::move(name), c_operation, 0, "", std::move(values)) {}

void OperationMetadata::serialize_i(Serializer& out) const {
    // One byte, and all pairs behind it even when there are more.
    out.write(m_name, m_operation, m_size, m_orgMsgTag, static_cast<pw_u8_t>(m_values.size()));
    for (const auto& pair : m_values) {
        out.write(pair);
    }
}

int OperationMetadata::deserialize_i(Serializer& in, unsigned) {
    m_orgMsgTag.clear();
    m_values.clear();
    if (in.read(m_name) == 0 || in.read(m_operation) == 0 || in.read(m_size) == 0) {
        return -1;
    }
    if (in.read_text(m_orgMsgTag)) {
        if (!m_orgMsgTag.empty()) {
            logMessage(PWLogLevel::INFO, "OK, read org msg tag = %s\n", m_orgMsgTag.c_str());
        }
    } else if (pw_u16_t length = 0; in.read(length) != 0) {
        // Not absent but cut short: what is left of it must not be taken for values.
        logWarning("WARNING: ERROR reading org msg tag while deserializing operation metadata message!\n");
        return -1;
    }
    if (getHandledVersion() < c_firstVersionWithValues) {
        return 0;
    }
    return readValues_i(in);
}

int OperationMetadata::readValues_i(Serializer& in) {
    pw_u8_t count = 0;
    if (in.read(count) == 0) {
        logWarning("WARNING: Unable to read values size from operation metadata!\n");
        return 0;
    }
    switch (readPairs(in, count, m_values)) {
    case PairMiss::KEY:
        logWarning("WARNING: ERROR reading key while deserializing operation metadata message!\n");
        return -1;
    case PairMiss::VALUE:
        logWarning("WARNING: ERROR reading value while deserializing operation metadata message!\n");
        return -1;
    case PairMiss::NONE: break;
    }
    return 0;
}

std::ostream& operator<<(std::ostream& out, const OperationMetadata& record) {
    out << "Operation Meta: Name = " << record.getName() << ", Operation = " << record.getOperation()
        << ", Size = " << std::to_string(record.getSize());
    if (!record.getOrgMsgTag().empty()) {
        out << ", Org msg tag = " << record.getOrgMsgTag();
    }
    return out << '\n';
}

} // namespace pwr
