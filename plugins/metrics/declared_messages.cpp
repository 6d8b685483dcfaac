#include "plugins/metrics/declared_messages.h"

#include <algorithm>

#include "common/metadata/metric_metadata.h"
#include "common/plugin/logger.h"

namespace pwr {

namespace {

bool isSame(const MessageInstances::Instance& left, const MessageInstances::Instance& right) {
    return left.entity == right.entity && left.descriptor == right.descriptor;
}

id_config_t idOf(const MsgMetadata& message) {
    return {static_cast<pw_u8_t>(message.getPluginID()), static_cast<pw_u8_t>(message.getMetricID()),
            static_cast<pw_u8_t>(message.getMsgID())};
}

} // namespace

DeclaredMessages::DeclaredMessages(std::string plugin, bool takesUnnamed)
    : m_plugin(std::move(plugin)), m_takesUnnamed(takesUnnamed) {}

int DeclaredMessages::processMetadata(const Metadata& declaration) {
    if (declaration.getType() != Metadata::__metadata_data_type::METRIC) {
        return 0;
    }
    return processMetric_i(dynamic_cast<const MetricMetadata&>(declaration));
}

int DeclaredMessages::processMetric_i(const MetricMetadata& record) {
    const auto& values = record.getValues();
    const auto plugin =
        std::find_if(values.begin(), values.end(), [](const auto& pair) { return pair.first == "PLUGIN"; });
    if (plugin == values.end() ? !m_takesUnnamed : plugin->second != m_plugin) {
        return 0;
    }
    MetricDeclaration metric;
    std::string error;
    if (metric.parse(record, error) != 0) {
        logWarning("WARNING: metric %u of plug-in %u cannot be computed: %s\n", record.getMetricID(),
                   record.getPluginID(), error.c_str());
        return 1;
    }
    m_metrics.insert_or_assign({record.getPluginID(), record.getMetricID()}, std::move(metric));
    return 0;
}

DeclaredMessage* DeclaredMessages::processInstances(const MsgMetadata& message,
                                                    const MessageInstances& instances) {
    const auto metric = m_metrics.find({message.getPluginID(), message.getMetricID()});
    if (metric == m_metrics.end()) {
        return nullptr;
    }
    const id_config_t id = idOf(message);
    const auto known =
        std::find_if(m_messages.begin(), m_messages.end(), [&id](const auto& m) { return m->id == id; });
    if (known == m_messages.end()) {
        m_messages.push_back(std::make_unique<DeclaredMessage>(
            DeclaredMessage{id, message.getCapName(), &metric->second, instances.instances}));
        return m_messages.back().get();
    }
    auto& all = (*known)->instances;
    const auto& more = instances.instances;
    if (more.size() >= all.size() && std::equal(all.begin(), all.end(), more.begin(), &isSame)) {
        all = more;
    } else {
        all.insert(all.end(), more.begin(), more.end());
    }
    return known->get();
}

} // namespace pwr
