#include "common/metadata/collector_metadata.h"

#include "common/metadata/value_pairs.h"
#include "common/plugin/logger.h"

#include <ostream>

namespace pwr {

CollectorMetadata::CollectorMetadata() : Metadata(__metadata_data_type::COLLECTOR) {}

CollectorMetadata::CollectorMetadata(std::string name, ValueList values)
    : Metadata(__metadata_data_type::COLLECTOR), m_name(std::move(name)), m_values(std::move(values)) {}

void CollectorMetadata::serialize_i(Serializer& out) const {
    out.write(m_name, m_values);
}

int CollectorMetadata::deserialize_i(Serializer& in, unsigned) {
    if (in.read(m_name) == 0) {
        logWarning("WARNING: ERROR reading name while deserializing collector metadata message!\n");
        return -1;
    }
    pw_u16_t count = 0;
    if (in.read(count) == 0) {
        logWarning("WARNING: ERROR reading map size while deserializing collector metadata message!\n");
        return -1;
    }
    switch (readPairs(in, count, m_values)) {
    case PairMiss::KEY:
        logWarning("WARNING: ERROR reading key while deserializing collector metadata message!\n");
        return -1;
    case PairMiss::VALUE:
        logWarning("WARNING: ERROR reading value while deserializing collector metadata message!\n");
        return -1;
    case PairMiss::NONE: break;
    }
    return 0;
}

std::ostream& operator<<(std::ostream& out, const CollectorMetadata& record) {
    out << "Collector Meta: Name = " << record.getName() << '\n';
    printPayload(out, "\tCollector Metadata payload[", record.getValues());
    return out;
}

} // namespace pwr
