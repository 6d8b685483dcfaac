#pragma once

#include "common/export.h"
#include "common/pw_types.h"

#include <cstddef>
#include <string>
#include <vector>

namespace pwr {

/// Levels of a processor topology. Persistent: never renumber.
enum class top_node_type : pw_u32_t {
    NONE = 0,
    PACKAGE = 1,
    MODULE = 2,
    CORE = 3,
    THREAD = 4,
    SOC = 5,
    DIE = 6,
    TILE = 7,
    NULL_NODE = 8
};

inline constexpr std::size_t c_topNodeTypes = 9;

/// A node of the processor topology; belongs to its TopTree. Its children stay sorted by id.
class KRCOMMON_API TNode {
public:
    using Children = std::vector<TNode*>;

    TNode(int id, top_node_type type) : m_id(id), m_type(type) {}
    virtual ~TNode();
    TNode(const TNode&) = delete;
    TNode& operator=(const TNode&) = delete;

    /// The hardware's id, which is unique only among the children of one parent.
    int getID() const { return m_id; }
    /// Number in the whole tree, from 0 on in depth-first order; -1 until the tree is numbered.
    int getUniqueID() const { return m_uniqueId; }
    top_node_type getType() const { return m_type; }
    /// Null for a package.
    const TNode* getParent() const { return m_parent; }
    Children::const_iterator begin() const { return m_children.begin(); }
    Children::const_iterator end() const { return m_children.end(); }
    /// Type and id, such as "Core_3".
    std::string getName() const;
    /// Names from the package down to this node, joined by "/".
    std::string getFullyQualifiedName() const;

private:
    friend class TopTree;

    /// A node whose children are only sorted up to a position, and shall be sorted later.
    struct UnsortedChildren {
        TNode* node;
        std::size_t sortedCount;
    };

    /// Puts the child in front of the first one whose id is not lower.
    void insertChild_i(TNode& child);
    /// The same for builders that add many: a long list is only noted down, to be sorted once.
    void addChild_i(TNode& child, std::vector<UnsortedChildren>& unsorted);
    void sortChildren_i(std::size_t sortedCount);
    TNode* findChild_i(int id, top_node_type type) const;

    int m_id;
    int m_uniqueId = -1;
    top_node_type m_type;
    bool m_childrenSorted = true;
    TNode* m_parent = nullptr;
    Children m_children;
};

/// A core as the collector's text describes it. Cores that came another way are plain nodes of type
/// CORE, so ask with dynamic_cast before using this class.
class KRCOMMON_API TNodeCore : public TNode {
public:
    static constexpr pw_u32_t c_32BitMask = 0xFFFFFFFF;

    TNodeCore(int id, pw_u32_t modelIdAndType)
        : TNode(id, top_node_type::CORE), m_modelIdAndType(modelIdAndType) {}
    /// Model id and core type of a hybrid processor's core, as the collector reported them.
    pw_u32_t getCoreModelIDAndType() const { return m_modelIdAndType; }

private:
    pw_u32_t m_modelIdAndType;
};

} // namespace pwr
