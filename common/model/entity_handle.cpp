#include "common/model/entity_handle.h"

#include <memory>
#include <utility>

#include "common/model/cpu_entity_topology.h"
#include "common/model/data_handle_provider.h"
#include "common/plugin/logger.h"
#include "common/topology/top_tree.h"

namespace pwr {

namespace {

const CpuEntityTopology* topologyForHandle() {
    const CpuEntityTopology* const topology = CpuEntityTopology::current();
    if (topology == nullptr) {
        logWarning("WARNING: Cannot retrieve a CPU Entity handle until it has been initialized\n");
    }
    return topology;
}

const EntityHandle* findCpuEntity(CpuLevel level, int id) {
    const CpuEntityTopology* const topology = topologyForHandle();
    return topology == nullptr ? nullptr : topology->find(level, id);
}

int countCpuEntities(CpuLevel level) {
    const CpuEntityTopology* const topology = CpuEntityTopology::current();
    if (topology == nullptr) {
        logWarning("WARNING: Cannot retrieve a CPU Entity count until it has been initialized\n");
        return -1;
    }
    return topology->count(level);
}

} // namespace

EntityDescription::EntityDescription(const std::string& name, const std::string& shortName)
    : Description(DescriptionType::ENTITY, name, shortName) {}

EntityHandle::EntityHandle(const Description& description)
    : DataHandle(description, DataHandleType::ENTITY) {}

EntityHandle::~EntityHandle() = default;

EntityHandle* EntityHandle::create(const Description& description, const EntityHandle* parent) {
    return create_i(description, parent, false);
}

EntityHandle* EntityHandle::create(const std::string& name, const EntityHandle* parent) {
    return create_i(EntityDescription(name), parent, false);
}

EntityHandle* EntityHandle::create(const std::string& name, const std::string& shortName,
                                   const EntityHandle* parent) {
    return create_i(EntityDescription(name, shortName), parent, false);
}

EntityHandle* EntityHandle::create_i(const Description& description, const EntityHandle* parent,
                                     bool isSystem) {
    std::unique_ptr<EntityHandle> made(new EntityHandle(description));
    made->m_isSystem = isSystem;
    // Linked before it is announced: the writers read its qualified name when they hear of it.
    if (parent != nullptr) {
        parent->addChild(made.get());
    }
    return DataHandleProvider::adopt(std::move(made));
}

int EntityHandle::addChild(EntityHandle* child) const {
    for (const EntityHandle* ancestor = this; ancestor != nullptr; ancestor = ancestor->m_parent) {
        if (ancestor == child) {
            logWarning("WARNING: Could not add relationship because cycle detected\n");
            return 1;
        }
    }
    m_children.push_back(child);
    child->m_parent = this;
    return 0;
}

std::string EntityHandle::getQualifiedName() const {
    std::vector<const std::string*> names{&getName()};
    std::size_t size = getName().size();
    for (const EntityHandle* ancestor = m_parent;
         ancestor != nullptr && !ancestor->m_isSystem && !ancestor->getName().empty();
         ancestor = ancestor->m_parent) {
        names.push_back(&ancestor->getName());
        size += ancestor->getName().size() + 1;
    }
    std::string qualified;
    qualified.reserve(size);
    for (auto name = names.rbegin(); name != names.rend(); ++name) {
        if (name != names.rbegin()) {
            qualified += '/';
        }
        qualified += **name;
    }
    return qualified;
}

std::string EntityHandle::getQualifiedName(const EntityHandle* entity) {
    if (entity == nullptr) {
        logWarning("WARNING: Unique failed to retrieve entity\n");
        return "";
    }
    return entity->getQualifiedName();
}

const EntityHandle* EntityHandle::getCPUPackageHandle(int id) {
    return findCpuEntity(CpuLevel::PACKAGE, id);
}

const EntityHandle* EntityHandle::getCPUModuleHandle(int id) {
    return findCpuEntity(CpuLevel::MODULE, id);
}

const EntityHandle* EntityHandle::getCPUCoreHandle(int id) {
    return findCpuEntity(CpuLevel::CORE, id);
}

const EntityHandle* EntityHandle::getCPUThreadHandle(int id) {
    return findCpuEntity(CpuLevel::THREAD, id);
}

const EntityHandle* EntityHandle::getCPUEntityHandle(const TNode* node) {
    const CpuEntityTopology* const topology = topologyForHandle();
    return topology == nullptr ? nullptr : topology->findNode(node == nullptr ? -1 : node->getUniqueID());
}

const EntityHandle* EntityHandle::getSystemHandle() {
    const CpuEntityTopology* const topology = topologyForHandle();
    return topology == nullptr ? nullptr : topology->systemEntity();
}

int EntityHandle::getCPUPackageCount() {
    return countCpuEntities(CpuLevel::PACKAGE);
}

int EntityHandle::getCPUModuleCount() {
    return countCpuEntities(CpuLevel::MODULE);
}

int EntityHandle::getCPUCoreCount() {
    return countCpuEntities(CpuLevel::CORE);
}

int EntityHandle::getCPUThreadCount() {
    return countCpuEntities(CpuLevel::THREAD);
}

} // namespace pwr
