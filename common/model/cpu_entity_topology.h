#pragma once

#include <array>
#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace pwr {

class EntityHandle;
class SystemMetadata;
class TNode;
class TopTree;

/// The levels of the processor topology that are measured things.
enum class CpuLevel : std::size_t { PACKAGE = 0, MODULE, CORE, THREAD };

/// The entities of one processor topology: the system entity and below it packages, modules, cores and threads.
/// Dies, tiles and other nodes between them get no entity; what stands below them belongs to the nearest level
/// above that has one, and carries them in its name, because two dies may number their cores alike.
/// Keeps no pointer into the tree or the record that it was built from.
class CpuEntityTopology {
public:
    static constexpr std::size_t LEVEL_COUNT = 4;

    /// The topology that the environment's slot names, null when that is none of ours.
    static const CpuEntityTopology* current();

    /// Builds a topology and puts it into the environment's slot, in the place of the one there, which ends.
    /// 0, or 1 after a warning when the record has no processor part or its tree is not sound.
    static int install(const SystemMetadata& metadata);

    [[nodiscard]] const EntityHandle* systemEntity() const noexcept { return m_system; }
    [[nodiscard]] const EntityHandle* find(CpuLevel level, int hardwareId) const;
    [[nodiscard]] const EntityHandle* findNode(int uniqueId) const;
    [[nodiscard]] int count(CpuLevel level) const noexcept {
        return m_levels[static_cast<std::size_t>(level)].count;
    }

private:
    struct Level {
        std::map<int, const EntityHandle*> byHardwareId; // the first of several cores with one id
        int count = 0;                                   // of all of them
    };

    /// A node that still has to be visited, and what its place in the tree means for it.
    struct Visit {
        const TNode* node;
        const TNode* parent;         // null for a package
        const EntityHandle* above;   // nearest entity
        std::size_t firstLevelBelow; // the levels that may stand below `above`
        std::string prefix;          // names of the nodes without entity in between, each with a "/" behind
        std::size_t depth;
    };

    CpuEntityTopology();

    int build_i(const SystemMetadata& metadata);
    void addTree_i(const TopTree& tree);
    void visit_i(const Visit& visit, std::vector<Visit>& open);
    const EntityHandle* addEntity_i(const Visit& visit, std::size_t level);

    const EntityHandle* m_system;
    std::array<Level, LEVEL_COUNT> m_levels;
    std::map<int, const EntityHandle*> m_byNode; // by the node's unique id
    bool m_treeIsSound = true;
    bool m_allNodesKnown = true;
};

} // namespace pwr
