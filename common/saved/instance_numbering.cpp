#include "common/saved/instance_numbering.h"

#include "common/metadata/cpu_metadata.h"
#include "common/metadata/system_metadata.h"
#include "common/model/cpu_entity_topology.h"
#include "common/model/data_descriptor.h"
#include "common/model/entity_handle.h"
#include "common/plugin/collection_data.h"
#include "common/topology/top_tree.h"

#include <algorithm>
#include <limits>
#include <set>

namespace pwr::saved {

namespace {

/// Calls back with (unique id, entity) of every node that has an entity in the current topology.
template <class Visitor> void visitNodes(const SystemMetadata& system, const Visitor& visit) {
    const CPUMetadata* const record = system.getCPUMetadata();
    const CpuEntityTopology* const topology = CpuEntityTopology::current();
    if (record == nullptr || topology == nullptr) {
        return;
    }
    std::vector<const TNode*> nodes;
    for (pw_u32_t type = 0; type < c_topNodeTypes; ++type) {
        record->getCPUTopology().getAllNodesOfType(nodes, static_cast<top_node_type>(type));
    }
    for (const TNode* node : nodes) {
        const EntityHandle* const entity = topology->findNode(node->getUniqueID());
        if (entity != nullptr) {
            visit(static_cast<pw_u32_t>(node->getUniqueID()), entity);
        }
    }
}

bool isSaved(const Data& value) {
    return value.isSet() && value.isValid() &&
           ((value.getType() >= DataType::INT && value.getType() <= DataType::REAL) ||
            value.getType() == DataType::STRING);
}

template <class Handle, class Saved> void copyTexts(const Handle& from, Saved& to) {
    to.name = from.getName();
    to.shortName = from.getShortName();
    to.fieldName = from.getFieldName();
    to.description = from.getDescription();
    to.header = from.getHeader();
}

template <class Handle> struct OlderFirst {
    bool operator()(const Handle* left, const Handle* right) const { return left->getId() < right->getId(); }
};

template <class Key> pw_u32_t numberOf(const std::map<const Key*, pw_u32_t>& known, const Key* handle) {
    const auto found = known.find(handle);
    return found == known.end() ? 0 : found->second;
}

} // namespace

InstanceNumbering::InstanceNumbering(const SystemMetadata& system) {
    visitNodes(system, [this](pw_u32_t id, const EntityHandle* entity) { m_nodes.try_emplace(entity, id); });
}

SavedInstances InstanceNumbering::describe(id_config_t message, const MessageInstances& instances,
                                           bool isAddition) {
    std::set<const EntityHandle*, OlderFirst<EntityHandle>> entities;
    std::set<const DataDescriptor*, OlderFirst<DataDescriptor>> descriptors;
    for (const MessageInstances::Instance& instance : instances.instances) {
        // Parents are older than their children, so they come first.
        for (const EntityHandle* entity = instance.entity;
             entity != nullptr && numberOf(m_entities, entity) == 0; entity = entity->getParent()) {
            entities.insert(entity);
            if (m_nodes.count(entity) != 0) {
                break; // what a node stands below is the topology's to tell
            }
        }
        if (instance.descriptor != nullptr && numberOf(m_descriptors, instance.descriptor) == 0) {
            descriptors.insert(instance.descriptor);
        }
    }
    SavedInstances out;
    out.message = message;
    out.isAddition = isAddition;
    out.firstEntity = static_cast<pw_u32_t>(m_entities.size() + 1);
    out.firstDescriptor = static_cast<pw_u32_t>(m_descriptors.size() + 1);
    for (const EntityHandle* entity : entities) {
        addEntity_i(entity, out);
    }
    for (const DataDescriptor* descriptor : descriptors) {
        addDescriptor_i(descriptor, out);
    }
    for (const MessageInstances::Instance& instance : instances.instances) {
        out.instances.emplace_back(numberOf(m_entities, instance.entity),
                                   numberOf(m_descriptors, instance.descriptor));
    }
    return out;
}

void InstanceNumbering::addEntity_i(const EntityHandle* entity, SavedInstances& out) {
    SavedEntity saved;
    const auto node = m_nodes.find(entity);
    if (node != m_nodes.end()) {
        saved.kind = SavedEntity::Kind::TOPOLOGY;
        saved.node = node->second;
    } else if (entity->isSystemEntity()) {
        saved.kind = SavedEntity::Kind::SYSTEM;
    } else {
        saved.parent = numberOf(m_entities, entity->getParent());
        copyTexts(*entity, saved);
    }
    m_entities.try_emplace(entity, static_cast<pw_u32_t>(m_entities.size() + 1));
    out.newEntities.push_back(std::move(saved));
}

void InstanceNumbering::addDescriptor_i(const DataDescriptor* descriptor, SavedInstances& out) {
    SavedDescriptor saved;
    copyTexts(*descriptor, saved);
    if (descriptor->getValue() != nullptr && isSaved(*descriptor->getValue())) {
        saved.value = *descriptor->getValue();
    }
    m_descriptors.try_emplace(descriptor, static_cast<pw_u32_t>(m_descriptors.size() + 1));
    out.newDescriptors.push_back(std::move(saved));
}

InstanceResolver::InstanceResolver(const SystemMetadata& system) {
    m_descriptors[0] = nullptr; // values that belong to an entity as such
    visitNodes(system, [this](pw_u32_t id, const EntityHandle* entity) { m_nodes.try_emplace(id, entity); });
}

/// Empty when every number refers to something.
std::string InstanceResolver::faultOf_i(const SavedInstances& saved) const {
    constexpr std::uint64_t c_most = std::numeric_limits<pw_u32_t>::max();
    const std::uint64_t entityEnd = std::uint64_t{saved.firstEntity} + saved.newEntities.size();
    const std::uint64_t descriptorEnd = std::uint64_t{saved.firstDescriptor} + saved.newDescriptors.size();
    if (saved.firstEntity == 0 || saved.firstDescriptor == 0 || entityEnd > c_most ||
        descriptorEnd > c_most) {
        return "instances are numbered from nothing";
    }
    const auto isKnown = [](const auto& known, pw_u32_t first, std::uint64_t end, pw_u32_t number) {
        return (number >= first && number < end) || known.count(number) != 0;
    };
    for (std::uint64_t number = saved.firstEntity; number < entityEnd; ++number) {
        const SavedEntity& entity = saved.newEntities[static_cast<std::size_t>(number - saved.firstEntity)];
        const std::string whose = "entity " + std::to_string(number) + " ";
        if (entity.kind == SavedEntity::Kind::TOPOLOGY && m_nodes.count(entity.node) == 0) {
            return whose + "is node " + std::to_string(entity.node) + ", which the topology does not have";
        }
        if (entity.kind == SavedEntity::Kind::SYSTEM && CpuEntityTopology::current() == nullptr) {
            return whose + "is the system, which has no topology";
        }
        if (entity.parent != 0 && !isKnown(m_entities, saved.firstEntity, number, entity.parent)) {
            return whose + "stands below entity " + std::to_string(entity.parent) + ", which is not there";
        }
    }
    for (const auto& [entity, descriptor] : saved.instances) {
        if (!isKnown(m_entities, saved.firstEntity, entityEnd, entity)) {
            return "an instance belongs to entity " + std::to_string(entity) + ", which is not there";
        }
        if (!isKnown(m_descriptors, saved.firstDescriptor, descriptorEnd, descriptor)) {
            return "an instance belongs to descriptor " + std::to_string(descriptor) + ", which is not there";
        }
    }
    return "";
}

const EntityHandle* InstanceResolver::make_i(const SavedEntity& entity) const {
    switch (entity.kind) {
    case SavedEntity::Kind::TOPOLOGY: return m_nodes.at(entity.node);
    case SavedEntity::Kind::SYSTEM: return CpuEntityTopology::current()->systemEntity();
    case SavedEntity::Kind::NAMED: break;
    }
    EntityDescription description(entity.name, entity.shortName);
    description.setFieldName(entity.fieldName);
    description.setDescription(entity.description);
    description.setHeader(entity.header);
    return EntityHandle::create(description, entity.parent == 0 ? nullptr : m_entities.at(entity.parent));
}

int InstanceResolver::resolve(const SavedInstances& saved, MessageInstances& out, std::string& error) {
    out = {};
    error = faultOf_i(saved);
    if (!error.empty()) {
        return 1;
    }
    pw_u32_t number = saved.firstEntity;
    for (const SavedEntity& entity : saved.newEntities) {
        if (m_entities.count(number) == 0) {
            m_entities[number] = make_i(entity);
        }
        ++number;
    }
    number = saved.firstDescriptor;
    for (const SavedDescriptor& descriptor : saved.newDescriptors) {
        if (m_descriptors.count(number) == 0) {
            DataDescriptorBuilder builder(descriptor.name);
            builder.setShortName(descriptor.shortName).setFieldName(descriptor.fieldName);
            builder.setDescription(descriptor.description).setHeader(descriptor.header);
            if (descriptor.value) {
                builder.setValue(*descriptor.value);
            }
            m_descriptors[number] = builder.build();
        }
        ++number;
    }
    for (const auto& [entity, descriptor] : saved.instances) {
        out.instances.push_back({m_entities.at(entity), m_descriptors.at(descriptor)});
    }
    return 0;
}

} // namespace pwr::saved
