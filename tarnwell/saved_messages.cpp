#include "tarnwell/saved_messages.h"

namespace tarnwell {

SavedMessages::SavedMessages(const pwr::saved::CollectionReader& reader, const pwr::SystemMetadata& system)
    : m_resolver(system) {
    for (const auto& declaration : reader.declarations()) {
        if (const auto* message = dynamic_cast<const pwr::MsgMetadata*>(declaration.get())) {
            m_declared.emplace(id_config_t{static_cast<pw_u8_t>(message->getPluginID()),
                                           static_cast<pw_u8_t>(message->getMetricID()),
                                           static_cast<pw_u8_t>(message->getMsgID())},
                               message);
        }
    }
    for (const pwr::saved::SavedInstances& saved : reader.instances()) {
        add(saved);
    }
}

const SavedMessages::Message* SavedMessages::add(const pwr::saved::SavedInstances& saved) {
    // Resolved in any case: later instances refer to the handles that these bring along.
    std::string reason;
    m_added = {};
    const bool isSound = m_resolver.resolve(saved, m_added.instances, reason) == 0;
    const auto declared = m_declared.find(saved.message);
    if (!isSound || declared == m_declared.end()) {
        m_problems.push_back("the instances of message " + std::to_string(saved.message.message) +
                             " cannot be used: " + (isSound ? "it is not declared" : reason));
        return nullptr;
    }
    m_added.metadata = declared->second;
    std::unique_ptr<Message>& known = m_messages[saved.message];
    if (known == nullptr) {
        known = std::make_unique<Message>(m_added);
        m_order.push_back(known.get());
    } else if (saved.isAddition) {
        auto& all = known->instances.instances;
        all.insert(all.end(), m_added.instances.instances.begin(), m_added.instances.instances.end());
    } else {
        known->instances = m_added.instances;
    }
    return &m_added;
}

std::vector<const SavedMessages::Message*> SavedMessages::all() const {
    return m_order;
}

const SavedMessages::Message* SavedMessages::find(const id_config_t& id) const {
    const auto known = m_messages.find(id);
    return known == m_messages.end() ? nullptr : known->second.get();
}

} // namespace tarnwell
