#include "common/metadata/metric_metadata.h"

#include "common/metadata/value_pairs.h"
#include "common/plugin/logger.h"

#include <ostream>

namespace pwr {

MetricMetadata::MetricMetadata() : Metadata(__metadata_data_type::METRIC) {}

MetricMetadata::MetricMetadata(pw_u32_t pluginId, pw_u32_t metricId, ValueList values)
    : Metadata(__metadata_data_type::METRIC), m_pluginId(pluginId), m_metricId(metricId),
      m_values(std::move(values)) {}

pw_u32_t MetricMetadata::getPluginID() const {
    return m_pluginId;
}

void MetricMetadata::setIDs(pw_u32_t pluginId, pw_u32_t metricId) {
    m_pluginId = pluginId;
    m_metricId = metricId;
}

void MetricMetadata::serialize_i(Serializer& out) const {
    out.write(m_pluginId, m_metricId, m_values);
}

int MetricMetadata::deserialize_i(Serializer& in, unsigned) {
    if (in.read(m_pluginId) == 0) {
        logWarning("WARNING: ERROR reading plugin ID while deserializing metric metadata message!\n");
        return -1;
    }
    if (in.read(m_metricId) == 0) {
        logWarning("WARNING: ERROR reading metric ID while deserializing metric metadata message!\n");
        return -1;
    }
    pw_u16_t count = 0;
    if (in.read(count) == 0) {
        logWarning("WARNING: ERROR reading map size while deserializing metric metadata message!\n");
        return -1;
    }
    switch (readPairs(in, count, m_values)) {
    case PairMiss::KEY:
        logWarning("WARNING: ERROR reading key while deserializing metric metadata message!\n");
        return -1;
    case PairMiss::VALUE:
        logWarning("WARNING: ERROR reading value while deserializing metric metadata message!\n");
        return -1;
    case PairMiss::NONE: break;
    }
    return 0;
}

std::ostream& operator<<(std::ostream& out, const MetricMetadata& record) {
    out << "Metric Metadata plugin ID: " << std::to_string(record.getPluginID()) << '\n'
        << "Metric Metadata metric ID: " << std::to_string(record.getMetricID()) << '\n';
    printPayload(out, "\tMetric Metadata payload[", record.getValues());
    return out;
}

} // namespace pwr
