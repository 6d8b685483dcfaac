#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "common/driver_interface.h"
#include "common/metadata/metadata.h"
#include "common/metadata/msg_metadata.h"
#include "common/metrics/metric_declaration.h"
#include "common/plugin/collection_data.h"

namespace pwr {

/// A message that a metric plug-in computes: what its values become, and whom they belong to.
struct DeclaredMessage {
    id_config_t id{};
    std::string feature;
    const MetricDeclaration* metric = nullptr;
    std::vector<MessageInstances::Instance> instances;
};

/// Gathers the declarations of a collection and keeps those that one metric plug-in is responsible for:
/// the metrics whose key PLUGIN is its name, or which have no such key.
class DeclaredMessages {
public:
    /// The plug-in's name, and whether it also takes metrics that name no plug-in.
    DeclaredMessages(std::string plugin, bool takesUnnamed);

    int processMetadata(const Metadata& declaration);
    /// The message's instances, or further ones: a list that begins with the known ones replaces them,
    /// another is appended. Null when the message is not this plug-in's.
    DeclaredMessage* processInstances(const MsgMetadata& message, const MessageInstances& instances);

    /// In the order of their first instances.
    const std::vector<std::unique_ptr<DeclaredMessage>>& messages() const { return m_messages; }

private:
    using MetricKey = std::pair<unsigned, unsigned>; // plug-in and metric number

    int processMetric_i(const MetricMetadata& record);

    std::string m_plugin;
    bool m_takesUnnamed;
    std::map<MetricKey, MetricDeclaration> m_metrics;
    std::vector<std::unique_ptr<DeclaredMessage>> m_messages;
};

} // namespace pwr
