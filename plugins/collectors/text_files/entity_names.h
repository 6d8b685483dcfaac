#pragma once

#include <map>
#include <set>
#include <string>

#include "common/model/data_descriptor.h"
#include "common/model/entity_handle.h"
#include "plugins/collectors/text_files/expansion.h"

namespace text_files {

/// The handles of whom the collected values belong to: processors from the topology, the system itself,
/// and, made once each below the system, everything else. Messages about one thing share its entity.
class EntityNames {
public:
    /// Null for a processor that the topology does not know (it was offline when that was made).
    const pwr::EntityHandle* entityOf(const Place& place);
    /// The descriptor of a name; null for "".
    static const pwr::DataDescriptor* descriptorOf(const std::string& name);

    /// Whether another entity than this one is shown under the same name.
    bool isNameTaken(const Place& place) const;

private:
    std::map<std::string, const pwr::EntityHandle*> m_entities;
    std::map<std::string, std::set<std::string>> m_names; // name: the entities that have it
};

} // namespace text_files
