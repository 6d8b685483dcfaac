#include "common/metadata/msg_metadata.h"

#include <utility>

namespace pwr {

MsgMetadata::MsgMetadata() : Metadata(__metadata_data_type::MSG) {}

MsgMetadata::MsgMetadata(pw_u32_t pluginId, pw_u32_t metricId, pw_u32_t msgId, std::string capName,
                         std::string msgName)
    : Metadata(__metadata_data_type::MSG), m_pluginId(pluginId), m_metricId(metricId), m_msgId(msgId),
      m_capName(std::move(capName)), m_msgName(std::move(msgName)) {}

MsgMetadata::~MsgMetadata() = default;
MsgMetadata::MsgMetadata(MsgMetadata&&) noexcept = default;
MsgMetadata& MsgMetadata::operator=(MsgMetadata&&) noexcept = default;

pw_u32_t MsgMetadata::getPluginID() const {
    return m_pluginId;
}

void MsgMetadata::setIDs(pw_u32_t pluginId, pw_u32_t metricId, pw_u32_t msgId) {
    m_pluginId = pluginId;
    m_metricId = metricId;
    m_msgId = msgId;
}

void MsgMetadata::addCapGroup(std::string group) {
    m_capGroups.insert(std::move(group));
}

void MsgMetadata::addTrigger(std::string trigger) {
    m_triggers.insert(std::move(trigger));
}

void MsgMetadata::addTracepointName(std::string name) {
    m_tracepointNames.insert(std::move(name));
}

void MsgMetadata::addMetaValue(std::unique_ptr<const OperationMetadata> operation) {
    if (operation == nullptr) {
        return;
    }
    m_metaValues.push_back(operation.get());
    m_ownedValues.push_back(std::move(operation));
}

void MsgMetadata::addMetaValue(OperationMetadata operation) {
    addMetaValue(std::make_unique<const OperationMetadata>(std::move(operation)));
}

} // namespace pwr
