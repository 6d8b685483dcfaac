#pragma once

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "common/model/data_descriptor.h"
#include "common/model/entity_handle.h"
#include "common/plugin/collection_data.h"
#include "plugins/collectors/owner_patterns.h"

namespace collectors {

/// The handles of whom the collected values belong to: processors from the topology, the system itself,
/// and, made once each below the system, everything else. Messages about one thing share its entity.
class EntityNames {
public:
    /// Null for a processor that the topology does not know (it was offline when that was made).
    const pwr::EntityHandle* entityOf(const Owner& owner);
    /// The descriptor of a name; null for "".
    static const pwr::DataDescriptor* descriptorOf(const std::string& name);

    /// Appends the instances of the values, each of which is an Owner, and leaves out those of processors that the
    /// topology does not know. 1 with the reason in `out`.
    template <class Value> int makeInstances(std::vector<Value>& values, MessageInstances& out) {
        std::vector<Value> kept;
        Taken taken;
        for (Value& value : values) {
            if (addInstance_i(value, taken, out)) {
                kept.push_back(std::move(value));
            }
        }
        const int result = check_i(values.size(), kept.size(), out);
        values = std::move(kept);
        return result;
    }

    /// Whether another entity than this one is shown under the same name.
    bool isNameTaken(const Owner& owner) const;

private:
    using Taken = std::set<std::pair<const pwr::EntityHandle*, std::string>>;

    bool addInstance_i(const Owner& owner, Taken& taken, MessageInstances& out);
    static int check_i(std::size_t wanted, std::size_t made, MessageInstances& out);

    std::map<std::string, const pwr::EntityHandle*> m_entities;
    std::map<std::string, std::set<std::string>> m_names; // name: the entities that have it
};

} // namespace collectors
