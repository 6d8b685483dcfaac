#include "common/metadata/collector_metadata.h"

namespace pwr {

CollectorMetadata::CollectorMetadata() : Metadata(__metadata_data_type::COLLECTOR) {}

CollectorMetadata::CollectorMetadata(std::string name, ValueList values)
    : Metadata(__metadata_data_type::COLLECTOR), m_name(std::move(name)), m_values(std::move(values)) {}

} // namespace pwr
