#include "common/metadata/msg_metadata.h"

#include "common/metadata/serializer.h"

#include <ostream>
#include <utility>

namespace pwr {

namespace {

std::string joined(const std::set<std::string>& names) {
    std::string text;
    for (const std::string& name : names) {
        text += (text.empty() ? "" : ", ") + name;
    }
    return text;
}

} // namespace

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

void MsgMetadata::serialize_i(Serializer& out) const {
    out.write(m_pluginId, m_metricId, m_msgId, m_capName, m_capGroups, m_msgName,
              static_cast<pw_u16_t>(m_metaValues.size()));
    for (const OperationMetadata* operation : m_metaValues) {
        operation->serialize(out);
    }
    out.write(m_triggers, m_tracepointNames);
}

int MsgMetadata::deserialize_i(Serializer& in, unsigned reserved) {
    m_metaValues.clear();
    m_ownedValues.clear();
    pw_u16_t count = 0;
    if (in.read(m_pluginId) == 0 || in.read(m_metricId) == 0 || in.read(m_msgId) == 0 ||
        in.read(m_capName) == 0 || in.read(m_capGroups) == 0 || in.read(m_msgName) == 0 ||
        in.read(count) == 0) {
        return -1;
    }
    for (unsigned i = 0; i < count; ++i) {
        auto operation = std::make_unique<OperationMetadata>();
        if (deserializeAs_i(*operation, in, reserved) != 0) {
            return -1;
        }
        addMetaValue(std::move(operation));
    }
    return in.read(m_triggers) != 0 && in.read(m_tracepointNames) != 0 ? 0 : -1;
}

std::ostream& operator<<(std::ostream& out, const MsgMetadata& record) {
    out << "Msg Metadata Plugin ID: " << std::to_string(record.getPluginID()) << '\n'
        << "Msg Metadata Metric ID: " << std::to_string(record.getMetricID()) << '\n'
        << "Msg Metadata MSG ID: " << std::to_string(record.getMsgID()) << '\n'
        << "Msg Metadata Switch name: " << record.getCapName() << '\n'
        << "Msg Metadata group names: \t" << joined(record.getCapGroups()) << '\n'
        << "Msg Metadata Msg name: " << record.getMsgName() << '\n';
    for (const OperationMetadata* operation : record.getMetaValues()) {
        out << operation->getName() << " = " << operation->getOperation() << '\n';
    }
    return out << "Msg Metadata triggers: " << joined(record.getTriggers()) << '\n';
}

} // namespace pwr
