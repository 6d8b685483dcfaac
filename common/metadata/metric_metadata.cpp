#include "common/metadata/metric_metadata.h"

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

} // namespace pwr
