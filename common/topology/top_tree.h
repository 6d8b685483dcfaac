#pragma once

#include "common/export.h"
#include "common/pw_types.h"
#include "common/topology/node_map.h"
#include "common/topology/topology_node.h"

#include <array>
#include <cstddef>
#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace pwr {

class Serializer;

/// The processors of a machine: packages that hold modules or dies, which hold cores, which hold
/// hardware threads. Built from the collector's text or node by node. Owns every node; the nodes
/// keep their addresses as long as the tree lives.
/// Each node also stands in a map of its type under a path key that is made of the ids on its way
/// down, 16 bits each; look-ups answer in key order. Keys can collide on machines with odd ids (die
/// and module of one id, say); a second node of a key then stays in the tree alone.
/// Threads: one at a time.
class KRCOMMON_API TopTree {
public:
    using HWQMapping = std::map<pw_u16_t, pw_u16_t>;

    TopTree();
    ~TopTree();
    TopTree(const TopTree&) = delete;
    TopTree& operator=(const TopTree&) = delete;

    /// Adds the processors of a text, six numbers each, separated by blanks or line ends: thread,
    /// package, core, core model and type, die, module; decimal, 0x or octal, -1 for an absent die
    /// or module. With coresPerModule the module is core / coresPerModule instead. A module wins
    /// over a die. Records with a negative thread, package or core are left out with a warning, and
    /// so is an incomplete last record, silently. Numbers the tree afterwards.
    void buildTopology(std::string_view text, std::size_t coresPerModule);

    /// Adds the (key, value) pairs of a text, numbers as above, cut to 16 bits; the later of two
    /// pairs with one key wins, and a key without value at the end is ignored.
    void buildHWQMapping(std::string_view text);
    const HWQMapping& getHWQMapping() const { return m_hwqMapping; }

    /// Adds the path to a hardware thread, as far as it is missing; without module for -1. False,
    /// and nothing is added, when another id is negative. Does not number the tree.
    bool addNode(int threadId, int coreId, int moduleId, int packageId);

    // Numbers of nodes in the map of a type, 0 for a type that does not exist.
    std::size_t getNumPackages() const;
    std::size_t getNumModules() const;
    std::size_t getNumDies() const;
    std::size_t getNumCores() const;
    std::size_t getNumThreads() const;
    std::size_t getNumNodesOfType(top_node_type type) const;

    // Append the nodes in the map of a type, in key order; nothing for a type that does not exist.
    void getAllPackages(std::vector<const TNode*>& nodes) const;
    void getAllModules(std::vector<const TNode*>& nodes) const;
    void getAllDies(std::vector<const TNode*>& nodes) const;
    void getAllCores(std::vector<const TNode*>& nodes) const;
    void getAllThreads(std::vector<const TNode*>& nodes) const;
    void getAllNodesOfType(std::vector<const TNode*>& nodes, top_node_type type) const;

    /// Writes the tree as it is saved, packages in the order of their ids.
    void serializeTree(Serializer& out) const;
    /// Reads a tree in place of this one, children as they are sorted by id, equal ids in the order
    /// of the stream, and numbers it. 0, or 1 when the bytes end too early, when a node's type cannot
    /// stand where it does, when a package id repeats or when it nests deeper than c_maxDepth: what
    /// was read until then stays and is numbered, and the reading position means nothing.
    int deserializeTree(Serializer& in);
    static constexpr std::size_t c_maxDepth = 16;

    // The same in the form of collections before 2025.3.1, whose cores tell no model; they become
    // plain nodes when they are read.
    void serializeTreeDeprecated(Serializer& out) const;
    int deserializeTreeDeprecated(Serializer& in);

    /// Writes the HWQ mapping as it is saved.
    void serializeHWQ(Serializer& out) const;
    /// Reads a mapping in place of this one: 0, or 1 when it is not there as a whole; it is empty then.
    int deserializeHWQ(Serializer& in);

    /// Writes the tree, one indented line a node, to the debug log when that is switched on for the
    /// tag "topology".
    void dumpPackages() const;

private:
    class Builder;
    class Reader;

    NodeMap& mapOf_i(top_node_type type) { return m_maps[static_cast<std::size_t>(type)]; }
    TNode* stepDown_i(TNode* parent, int id, top_node_type type);
    void number_i();
    void clearTree_i();
    int readTree_i(Serializer& in, bool withModels);
    void writeTree_i(Serializer& out, bool withModels) const;

    std::deque<TNode> m_nodes;
    std::deque<TNodeCore> m_cores;
    std::array<NodeMap, c_topNodeTypes> m_maps;
    HWQMapping m_hwqMapping;
};

} // namespace pwr
