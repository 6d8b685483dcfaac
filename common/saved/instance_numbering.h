#pragma once

#include "common/export.h"
#include "common/saved/saved_instances.h"

#include <map>
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

    std::map<const EntityHandle*, pw_u32_t> m_nodes;
    std::map<const EntityHandle*, pw_u32_t> m_entities;
    std::map<const DataDescriptor*, pw_u32_t> m_descriptors;
};

/// The reverse: finds or makes the handles of a file's numbers, in the order of the file. Needs the topology of the
/// file's system record to be the current one (its reading sees to that).
class KRCOMMON_API InstanceResolver {
public:
    explicit InstanceResolver(const SystemMetadata& system);

    /// 0; or 1, and nothing in `out`, when a number refers to nothing, with the reason in `error`.
    int resolve(const SavedInstances& saved, MessageInstances& out, std::string& error);

private:
    std::map<pw_u32_t, const EntityHandle*> m_nodes;
    std::vector<const EntityHandle*> m_entities;
    std::vector<const DataDescriptor*> m_descriptors;
};

} // namespace pwr::saved
