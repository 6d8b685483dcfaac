#pragma once

#include "common/metadata/msg_metadata.h"
#include "common/plugin/collection_data.h"
#include "common/saved/collection_reader.h"
#include "common/saved/instance_numbering.h"
#include "tarnwell/computation.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace tarnwell {

/// The messages of a saved collection with the handles of their instances, made in the order of the file.
/// Refers to the reader's declarations.
class SavedMessages {
public:
    struct Message {
        const pwr::MsgMetadata* metadata;
        MessageInstances instances;
    };

    /// @p system must be the reader's record.
    SavedMessages(const pwr::saved::CollectionReader& reader, const pwr::SystemMetadata& system);

    /// Instances that came while collecting: what was added, valid until the next call. Null when they cannot be
    /// used; problems() tells why.
    const Message* add(const pwr::saved::SavedInstances& saved);

    /// Those that have instances, in the order of the file.
    std::vector<const Message*> all() const;
    /// Null for a number that no message has.
    const Message* find(const id_config_t& id) const;

    const std::vector<std::string>& problems() const { return m_problems; }

private:
    pwr::saved::InstanceResolver m_resolver;
    std::map<id_config_t, const pwr::MsgMetadata*> m_declared;
    std::map<id_config_t, std::unique_ptr<Message>> m_messages;
    std::vector<const Message*> m_order;
    Message m_added{};
    std::vector<std::string> m_problems;
};

} // namespace tarnwell
