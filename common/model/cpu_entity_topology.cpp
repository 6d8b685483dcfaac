#include "common/model/cpu_entity_topology.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "common/metadata/cpu_metadata.h"
#include "common/metadata/system_metadata.h"
#include "common/model/entity_handle.h"
#include "common/plugin/logger.h"
#include "common/plugin/plugin_environment.h"
#include "common/topology/top_tree.h"

namespace pwr {

namespace {

// What a node of each type becomes: an entity of a level, or nothing of its own.
struct NodeKind {
    top_node_type type;
    std::optional<CpuLevel> level;
    const char* text;
};

constexpr NodeKind NODE_KINDS[] = {
    {top_node_type::PACKAGE, CpuLevel::PACKAGE, "CPU package "},
    {top_node_type::MODULE, CpuLevel::MODULE, "CPU module "},
    {top_node_type::CORE, CpuLevel::CORE, "CPU core "},
    {top_node_type::THREAD, CpuLevel::THREAD, "CPU thread "},
    {top_node_type::SOC, std::nullopt, ""},
    {top_node_type::DIE, std::nullopt, ""},
    {top_node_type::TILE, std::nullopt, ""},
};

// A tree that nests deeper than there are kinds of nodes comes from damaged bytes.
constexpr std::size_t MAX_DEPTH = std::size(NODE_KINDS);

const NodeKind* kindOf(const TNode& node) {
    const auto* const found =
        std::find_if(std::begin(NODE_KINDS), std::end(NODE_KINDS),
                     [&node](const NodeKind& kind) { return kind.type == node.getType(); });
    return found == std::end(NODE_KINDS) ? nullptr : found;
}

// All topologies that are still alive; more than one only while the host keeps an earlier one in another slot.
std::vector<std::unique_ptr<CpuEntityTopology>>& builtTopologies() {
    static auto* const built = new std::vector<std::unique_ptr<CpuEntityTopology>>;
    return *built;
}

const CPUMetadata* findCpuRecord(const SystemMetadata& metadata) {
    const auto found = metadata.platformMetadata.find(PlatformType::CPU);
    return found == metadata.platformMetadata.end() ? nullptr
                                                    : dynamic_cast<const CPUMetadata*>(found->second.get());
}

} // namespace

CpuEntityTopology::CpuEntityTopology() {
    EntityDescription description("SYSTEM");
    description.setDescription("The whole measured system");
    m_system = EntityHandle::create_i(description, nullptr, true);
}

const CpuEntityTopology* CpuEntityTopology::current() {
    const void* const slot = g_pluginEnvironment->getTopologyManager();
    for (const auto& built : builtTopologies()) {
        if (built.get() == slot) {
            return built.get();
        }
    }
    return nullptr;
}

int CpuEntityTopology::install(const SystemMetadata& metadata) {
    std::unique_ptr<CpuEntityTopology> made(new CpuEntityTopology);
    const int result = made->build_i(metadata);

    auto& built = builtTopologies();
    const void* const replaced = g_pluginEnvironment->getTopologyManager();
    const void* const keptByHost = g_pluginEnvironment->getPreCollectionTopology();
    g_pluginEnvironment->setTopologyManager(made.get());
    built.push_back(std::move(made));
    std::erase_if(built, [&](const auto& topology) {
        return topology.get() == replaced && topology.get() != keptByHost;
    });
    return result;
}

const EntityHandle* CpuEntityTopology::find(CpuLevel level, int hardwareId) const {
    const auto& entities = m_levels[static_cast<std::size_t>(level)].byHardwareId;
    const auto found = entities.find(hardwareId);
    return found == entities.end() ? nullptr : found->second;
}

const EntityHandle* CpuEntityTopology::findNode(int uniqueId) const {
    const auto found = m_byNode.find(uniqueId);
    return found == m_byNode.end() ? nullptr : found->second;
}

int CpuEntityTopology::build_i(const SystemMetadata& metadata) {
    const CPUMetadata* const record = findCpuRecord(metadata);
    if (record == nullptr) {
        logWarning("WARNING: CPU Metadata is broken");
        return 1;
    }
    addTree_i(record->getCPUTopology());
    if (!m_treeIsSound) {
        logWarning("WARNING: Topology is broken");
        return 1;
    }
    if (!m_allNodesKnown) {
        logWarning("WARNING: Error processing topology\n");
        return 1;
    }
    return 0;
}

void CpuEntityTopology::addTree_i(const TopTree& tree) {
    std::vector<const TNode*> packages;
    tree.getAllPackages(packages);
    // The next one stands last, so that entities are made in the order of the tree's numbers.
    std::reverse(packages.begin(), packages.end());
    std::vector<Visit> open;
    open.reserve(packages.size());
    for (const TNode* package : packages) {
        open.push_back({package, nullptr, m_system, 0, "", 0});
    }
    while (!open.empty()) {
        const Visit next = std::move(open.back());
        open.pop_back();
        visit_i(next, open);
    }
}

void CpuEntityTopology::visit_i(const Visit& visit, std::vector<Visit>& open) {
    const TNode* const node = visit.node;
    if (node == nullptr || node->getParent() != visit.parent || visit.depth >= MAX_DEPTH) {
        m_treeIsSound = false;
        return;
    }
    Visit below{nullptr, node, visit.above, visit.firstLevelBelow, visit.prefix, visit.depth + 1};
    const NodeKind* const kind = kindOf(*node);
    if (kind == nullptr) {
        m_allNodesKnown = false; // such as a kind of a newer version: it is passed through like a die
    }
    if (kind != nullptr && kind->level) {
        const auto level = static_cast<std::size_t>(*kind->level);
        if (level < visit.firstLevelBelow) {
            m_treeIsSound = false; // a package in a core, a thread in a thread: nothing below can be trusted
            return;
        }
        below.above = addEntity_i(visit, level);
        below.firstLevelBelow = level + 1;
        below.prefix.clear();
    } else {
        below.prefix += node->getName() + "/";
    }
    for (auto child = node->end(); child != node->begin();) {
        below.node = *--child;
        open.push_back(below);
    }
}

const EntityHandle* CpuEntityTopology::addEntity_i(const Visit& visit, std::size_t level) {
    const TNode* const node = visit.node;
    EntityDescription description(visit.prefix + node->getName());
    description.setDescription(kindOf(*node)->text + std::to_string(node->getID()));
    const EntityHandle* const entity = EntityHandle::create(description, visit.above);

    m_levels[level].byHardwareId.try_emplace(node->getID(), entity);
    ++m_levels[level].count;
    // A tree that was not numbered after a change has nodes without a number; those are not looked up.
    if (node->getUniqueID() >= 0 && !m_byNode.try_emplace(node->getUniqueID(), entity).second) {
        m_treeIsSound = false;
    }
    return entity;
}

} // namespace pwr
