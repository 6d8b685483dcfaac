#pragma once

#include <string>
#include <vector>

#include "common/export.h"
#include "common/model/attribute.h"
#include "common/model/data_handle.h"
#include "common/model/description.h"

namespace pwr {

class CpuEntityTopology;
class TNode;

/// Describes an entity.
class KRCOMMON_API EntityDescription : public Description {
public:
    explicit EntityDescription(const std::string& name, const std::string& shortName = "");
};

/// Identifies a measured thing: the system, a processor package, a core, a disk, a row of a table.
/// Entities form a tree; those of the processor are built from the collection's topology
/// (DataHandleProvider::initTopology) and found by the look-ups here. An entity can carry attribute values.
/// Ownership: the registry's, for the whole process.
class KRCOMMON_API EntityHandle : public DataHandle, public AttributeValueManager {
public:
    /// Registers a new entity below the parent, or a root for null. The announcement to the writers carries
    /// the parent already. An empty short name means the name.
    static EntityHandle* create(const Description& description, const EntityHandle* parent);
    static EntityHandle* create(const std::string& name, const EntityHandle* parent);
    static EntityHandle* create(const std::string& name, const std::string& shortName,
                                const EntityHandle* parent);

    ~EntityHandle() override;

    [[nodiscard]] const EntityHandle* getParent() const noexcept { return m_parent; }
    /// The entities created below this one, in the order of their creation.
    [[nodiscard]] const std::vector<const EntityHandle*>& getChildren() const noexcept { return m_children; }
    /// True for the root that a topology made, also after a later topology replaced it.
    [[nodiscard]] bool isSystemEntity() const noexcept { return m_isSystem; }

    /// The names from below the system entity down to this one, joined by "/". An ancestor without a name ends
    /// the walk as well.
    [[nodiscard]] std::string getQualifiedName() const override;
    /// The same for a pointer; null gives "" and a warning.
    static std::string getQualifiedName(const EntityHandle* entity);

    /// The entities of the current topology; null when no such id exists, and, after a warning, when there is
    /// no topology. Ids are those of the hardware; where several cores share one, the first of them answers.
    static const EntityHandle* getCPUPackageHandle(int id);
    static const EntityHandle* getCPUModuleHandle(int id);
    static const EntityHandle* getCPUCoreHandle(int id);
    static const EntityHandle* getCPUThreadHandle(int id);
    /// The entity made for a node of the topology tree, found by the node's unique id; dies, tiles and SOC
    /// nodes have none.
    static const EntityHandle* getCPUEntityHandle(const TNode* node);
    /// The root of the current topology; like the other look-ups null, after a warning, without a topology.
    static const EntityHandle* getSystemHandle();

    /// How many entities of a kind the current topology has; -1, after a warning, without a topology.
    static int getCPUPackageCount();
    static int getCPUModuleCount();
    static int getCPUCoreCount();
    static int getCPUThreadCount();

private:
    friend class CpuEntityTopology;
    friend class EntityHandleTestAccess;

    explicit EntityHandle(const Description& description);

    static EntityHandle* create_i(const Description& description, const EntityHandle* parent, bool isSystem);

    /// Links a child below this entity. Returns 1 after a warning, both unchanged, when the child is this
    /// entity or one of its ancestors.
    int addChild(EntityHandle* child) const;

    const EntityHandle* m_parent = nullptr;
    // A parent is handed around as const; being given a child is no change that its holders can see in it.
    mutable std::vector<const EntityHandle*> m_children;
    bool m_isSystem = false;
};

} // namespace pwr
