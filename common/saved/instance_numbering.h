#pragma once

#include "common/export.h"
#include "common/saved/saved_instances.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

struct MessageInstances;

namespace pwr {
class DataDescriptor;
class EntityHandle;
class SystemMetadata;
} // namespace pwr

namespace pwr::saved {

/// Gives handles their numbers in a file. Needs the entity topology of the record to be the current one.
class KRCOMMON_API InstanceNumbering {
public:
    explicit InstanceNumbering(const SystemMetadata& system);

    SavedInstances describe(id_config_t message, const MessageInstances& instances, bool isAddition);

private:
    void addEntity_i(const EntityHandle* entity, SavedInstances& out);
    void addDescriptor_i(const DataDescriptor* descriptor, SavedInstances& out);

    std::map<const EntityHandle*, pw_u32_t> m_nodes; // unique ids of the topology
    std::map<const EntityHandle*, pw_u32_t> m_entities;
    std::map<const DataDescriptor*, pw_u32_t> m_descriptors;
};

/// The reverse: finds or makes the handles of a file's numbers, in the order of the file. Needs the topology of the
/// file's system record to be the current one (its reading sees to that). A number has one handle, however often it
/// is described; what was described in a lost part of the file has none.
class KRCOMMON_API InstanceResolver {
public:
    explicit InstanceResolver(const SystemMetadata& system);

    /// 0; or 1, and nothing in `out` and no handle made, when a number refers to nothing, with the reason in `error`.
    int resolve(const SavedInstances& saved, MessageInstances& out, std::string& error);

private:
    std::string faultOf_i(const SavedInstances& saved) const;
    const EntityHandle* make_i(const SavedEntity& entity) const;

    std::map<pw_u32_t, const EntityHandle*> m_nodes;
    std::map<pw_u32_t, const EntityHandle*> m_entities;
    std::map<pw_u32_t, const DataDescriptor*> m_descriptors;
};

} // namespace pwr::saved
