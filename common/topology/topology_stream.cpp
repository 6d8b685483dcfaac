#include "common/metadata/serializer.h"
#include "common/topology/path_key.h"
#include "common/topology/radix_sort.h"
#include "common/topology/top_tree.h"

#include <algorithm>
#include <cstdint>
#include <set>

namespace pwr {

namespace {

constexpr pw_s32_t c_endOfChildren = -1;

/// Types that may stand below another node; the packages stand alone at the top.
bool isTypeBelowPackages(pw_u32_t type) {
    return type >= static_cast<pw_u32_t>(top_node_type::MODULE) &&
           type <= static_cast<pw_u32_t>(top_node_type::TILE);
}

/// The way down to a node as readers know it: unlike in a node's own key, ids are cut to 16 bits with sign.
pw_u64_t pathBelow(pw_u64_t path, int id) {
    return path << 16 | static_cast<pw_u64_t>(static_cast<std::int16_t>(id));
}

void writeNode(Serializer& out, const TNode& node, bool withModels) {
    const auto type = static_cast<pw_u32_t>(node.getType());
    if (!withModels || node.getType() != top_node_type::CORE) {
        out.write(pw_s32_t{node.getID()}, type);
        return;
    }
    const auto* const core = dynamic_cast<const TNodeCore*>(&node);
    out.write(pw_s32_t{node.getID()}, type,
              core == nullptr ? TNodeCore::c_32BitMask : core->getCoreModelIDAndType());
}

} // namespace

/// Fills an empty tree from a stream. Nothing recurses: how deep a stream nests is its own choice.
class TopTree::Reader {
public:
    Reader(TopTree& tree, Serializer& in, bool withModels)
        : m_tree(tree), m_in(in), m_withModels(withModels) {}

    bool read() {
        pw_u16_t packages = 0;
        if (m_in.read(packages) == 0) {
            return false;
        }
        for (unsigned i = 0; i < packages; ++i) {
            if (!readPackage_i() || !readBelow_i()) {
                return false;
            }
        }
        return true;
    }

    /// Puts what was read in order, and numbers the tree.
    void finish() {
        while (!m_open.empty()) {
            close_i();
        }
        for (std::size_t type = 0; type < m_entries.size(); ++type) {
            // Of the nodes of one key the first stands in the map.
            std::vector<NodeMap::Entry>& entries = m_entries[type];
            radixSort(entries);
            entries.erase(std::unique(entries.begin(), entries.end(),
                                      [](const NodeMap::Entry& left, const NodeMap::Entry& right) {
                                          return left.key == right.key;
                                      }),
                          entries.end());
            m_tree.m_maps[type].merge(entries);
        }
        m_tree.number_i();
    }

private:
    /// A node whose children are being read.
    struct Open {
        TNode* node;
        pw_u64_t path;
    };

    bool readPackage_i() {
        pw_s32_t id = 0;
        pw_u32_t type = 0;
        if (m_in.read(id) == 0 || m_in.read(type) == 0 || id == c_endOfChildren ||
            type != static_cast<pw_u32_t>(top_node_type::PACKAGE) || !m_packageIds.insert(id).second) {
            return false;
        }
        TNode& package = m_tree.m_nodes.emplace_back(id, top_node_type::PACKAGE);
        enter_i(package, pathKey(id));
        m_open.push_back({&package, pathKey(id)});
        return true;
    }

    /// Everything below the package that was read last.
    bool readBelow_i() {
        while (!m_open.empty()) {
            pw_s32_t id = 0;
            if (m_in.read(id) == 0) {
                return false;
            }
            if (id == c_endOfChildren) {
                close_i();
            } else if (!readNode_i(id)) {
                return false;
            }
        }
        return true;
    }

    bool readNode_i(pw_s32_t id) {
        pw_u32_t type = 0;
        if (m_in.read(type) == 0 || !isTypeBelowPackages(type) || m_open.size() >= c_maxDepth) {
            return false;
        }
        TNode* const node = makeNode_i(id, static_cast<top_node_type>(type));
        if (node == nullptr) {
            return false;
        }
        const Open above = m_open.back();
        TNode::Children& siblings = above.node->m_children;
        above.node->m_childrenSorted &= siblings.empty() || siblings.back()->m_id <= id;
        siblings.push_back(node);
        node->m_parent = above.node;
        enter_i(*node, pathKey(above.path, id));
        m_open.push_back({node, pathBelow(above.path, id)});
        return true;
    }

    TNode* makeNode_i(pw_s32_t id, top_node_type type) {
        if (type != top_node_type::CORE || !m_withModels) {
            return &m_tree.m_nodes.emplace_back(id, type);
        }
        pw_u32_t model = 0;
        return m_in.read(model) == 0 ? nullptr : &m_tree.m_cores.emplace_back(id, model);
    }

    void enter_i(TNode& node, pw_u64_t key) {
        m_entries[static_cast<std::size_t>(node.m_type)].push_back({key, &node});
    }

    /// Ends a list of children. Of equal ids the earlier stays in front, or each saving would swap them.
    void close_i() {
        TNode& node = *m_open.back().node;
        m_open.pop_back();
        if (!node.m_childrenSorted) {
            std::stable_sort(node.m_children.begin(), node.m_children.end(),
                             [](const TNode* left, const TNode* right) { return left->m_id < right->m_id; });
            node.m_childrenSorted = true;
        }
    }

    TopTree& m_tree;
    Serializer& m_in;
    bool m_withModels;
    std::vector<Open> m_open;
    std::set<pw_s32_t> m_packageIds;
    std::array<std::vector<NodeMap::Entry>, c_topNodeTypes> m_entries;
};

void TopTree::clearTree_i() {
    m_maps.fill(NodeMap());
    m_nodes.clear();
    m_cores.clear();
}

int TopTree::readTree_i(Serializer& in, bool withModels) {
    clearTree_i();
    Reader reader(*this, in, withModels);
    const bool whole = reader.read();
    reader.finish();
    return whole ? 0 : 1;
}

void TopTree::writeTree_i(Serializer& out, bool withModels) const {
    struct Open {
        const TNode* node;
        TNode::Children::const_iterator next;
    };
    const NodeMap& packages = m_maps[static_cast<std::size_t>(top_node_type::PACKAGE)];
    out.write(static_cast<pw_u16_t>(packages.size()));
    std::vector<Open> open;
    for (const NodeMap::Entry& package : packages) {
        writeNode(out, *package.node, withModels);
        open.push_back({package.node, package.node->begin()});
        while (!open.empty()) {
            Open& last = open.back();
            if (last.next == last.node->end()) {
                out.write(c_endOfChildren);
                open.pop_back();
                continue;
            }
            const TNode* const child = *last.next++;
            writeNode(out, *child, withModels);
            open.push_back({child, child->begin()});
        }
    }
}

void TopTree::serializeTree(Serializer& out) const {
    writeTree_i(out, true);
}

int TopTree::deserializeTree(Serializer& in) {
    return readTree_i(in, true);
}

void TopTree::serializeTreeDeprecated(Serializer& out) const {
    writeTree_i(out, false);
}

int TopTree::deserializeTreeDeprecated(Serializer& in) {
    return readTree_i(in, false);
}

void TopTree::serializeHWQ(Serializer& out) const {
    out.write(m_hwqMapping);
}

int TopTree::deserializeHWQ(Serializer& in) {
    m_hwqMapping.clear();
    return in.read(m_hwqMapping) != 0 ? 0 : 1;
}

} // namespace pwr
