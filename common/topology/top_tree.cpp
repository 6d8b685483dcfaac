#include "common/topology/top_tree.h"

#include "common/plugin/logger.h"
#include "common/plugin/plugin_environment.h"
#include "common/topology/id_scanner.h"
#include "common/topology/path_key.h"

namespace pwr {

namespace {

constexpr const char* c_debugTag = "topology";

/// The nodes below and including those of the map, each before its children.
template <class Visitor> void visitDepthFirst(const NodeMap& packages, const Visitor& visit) {
    std::vector<TNode*> pending;
    for (const NodeMap::Entry& package : packages) {
        pending.push_back(package.node);
        while (!pending.empty()) {
            TNode* const node = pending.back();
            pending.pop_back();
            visit(*node);
            for (auto child = node->end(); child != node->begin();) {
                pending.push_back(*--child);
            }
        }
    }
}

int depthOf(const TNode& node) {
    int depth = 0;
    for (const TNode* above = node.getParent(); above != nullptr; above = above->getParent()) {
        ++depth;
    }
    return depth;
}

} // namespace

TopTree::TopTree() = default;
TopTree::~TopTree() = default;

void TopTree::buildHWQMapping(std::string_view text) {
    IdScanner scanner(text);
    pw_u32_t key = 0;
    pw_u32_t value = 0;
    while (scanner.next(key) && scanner.next(value)) {
        m_hwqMapping[static_cast<pw_u16_t>(key)] = static_cast<pw_u16_t>(value);
    }
}

bool TopTree::addNode(int threadId, int coreId, int moduleId, int packageId) {
    if (threadId < 0 || coreId < 0 || packageId < 0) {
        return false;
    }
    TNode* node = stepDown_i(nullptr, packageId, top_node_type::PACKAGE);
    if (moduleId != c_absentId) {
        node = stepDown_i(node, moduleId, top_node_type::MODULE);
    }
    node = stepDown_i(node, coreId, top_node_type::CORE);
    stepDown_i(node, threadId, top_node_type::THREAD);
    return true;
}

/// The child of the node, or the package for no node, that has the id; made when it is missing.
TNode* TopTree::stepDown_i(TNode* parent, int id, top_node_type type) {
    const pw_u64_t key = pathKey(parent == nullptr ? 0 : pathKey(parent->getID()), id);
    TNode* const existing = parent == nullptr ? mapOf_i(type).find(key) : parent->findChild_i(id, type);
    if (existing != nullptr) {
        return existing;
    }
    TNode& node = m_nodes.emplace_back(id, type);
    if (parent != nullptr) {
        parent->insertChild_i(node);
    }
    mapOf_i(type).insert(key, node);
    return &node;
}

void TopTree::number_i() {
    int next = 0;
    visitDepthFirst(mapOf_i(top_node_type::PACKAGE), [&next](TNode& node) { node.m_uniqueId = next++; });
}

std::size_t TopTree::getNumPackages() const {
    return getNumNodesOfType(top_node_type::PACKAGE);
}

std::size_t TopTree::getNumModules() const {
    return getNumNodesOfType(top_node_type::MODULE);
}

std::size_t TopTree::getNumDies() const {
    return getNumNodesOfType(top_node_type::DIE);
}

std::size_t TopTree::getNumCores() const {
    return getNumNodesOfType(top_node_type::CORE);
}

std::size_t TopTree::getNumThreads() const {
    return getNumNodesOfType(top_node_type::THREAD);
}

std::size_t TopTree::getNumNodesOfType(top_node_type type) const {
    const auto number = static_cast<std::size_t>(type);
    return number < m_maps.size() ? m_maps[number].size() : 0;
}

void TopTree::getAllPackages(std::vector<const TNode*>& nodes) const {
    getAllNodesOfType(nodes, top_node_type::PACKAGE);
}

void TopTree::getAllModules(std::vector<const TNode*>& nodes) const {
    getAllNodesOfType(nodes, top_node_type::MODULE);
}

void TopTree::getAllDies(std::vector<const TNode*>& nodes) const {
    getAllNodesOfType(nodes, top_node_type::DIE);
}

void TopTree::getAllCores(std::vector<const TNode*>& nodes) const {
    getAllNodesOfType(nodes, top_node_type::CORE);
}

void TopTree::getAllThreads(std::vector<const TNode*>& nodes) const {
    getAllNodesOfType(nodes, top_node_type::THREAD);
}

void TopTree::getAllNodesOfType(std::vector<const TNode*>& nodes, top_node_type type) const {
    const auto number = static_cast<std::size_t>(type);
    if (number >= m_maps.size()) {
        return;
    }
    nodes.reserve(nodes.size() + m_maps[number].size());
    for (const NodeMap::Entry& entry : m_maps[number]) {
        nodes.push_back(entry.node);
    }
}

void TopTree::dumpPackages() const {
    if (!g_pluginEnvironment->isDebugLoggingEnabledFor(c_debugTag)) {
        return;
    }
    const NodeMap& packages = m_maps[static_cast<std::size_t>(top_node_type::PACKAGE)];
    visitDepthFirst(packages, [](const TNode& node) {
        logTrace(c_debugTag, "%*s%s (unique id %d)\n", 2 * depthOf(node), "", node.getName().c_str(),
                 node.getUniqueID());
    });
}

} // namespace pwr
