#include "common/topology/topology_node.h"

#include <algorithm>
#include <array>

namespace pwr {

namespace {

constexpr std::array<const char*, c_topNodeTypes> c_typeNames = {
    "NONE", "Package", "Module", "Core", "Thread", "SOC", "Die", "Tile", "NULL"};

const char* nameOf(top_node_type type) {
    const auto number = static_cast<std::size_t>(type);
    return number < c_typeNames.size() ? c_typeNames[number] : "NULL";
}

bool isBelow(const TNode* left, const TNode* right) {
    return left->getID() < right->getID();
}

} // namespace

// Emitted here, because on Windows a user who takes its address asks the library for it.
constexpr pw_u32_t TNodeCore::c_32BitMask; // NOLINT(readability-redundant-declaration)

TNode::~TNode() = default;

std::string TNode::getName() const {
    return std::string(nameOf(m_type)) + "_" + std::to_string(m_id);
}

std::string TNode::getFullyQualifiedName() const {
    std::string name = getName();
    for (const TNode* node = m_parent; node != nullptr; node = node->m_parent) {
        name = node->getName() + "/" + name;
    }
    return name;
}

void TNode::insertChild_i(TNode& child) {
    child.m_parent = this;
    m_children.insert(std::lower_bound(m_children.begin(), m_children.end(), &child, isBelow), &child);
}

void TNode::addChild_i(TNode& child, std::vector<UnsortedChildren>& unsorted) {
    // Up to here moving the children costs less than remembering to sort them.
    constexpr std::size_t c_longList = 32;
    constexpr std::size_t c_usualChildren = 2; // threads of a core
    if (m_childrenSorted && !m_children.empty() && m_children.back()->m_id >= child.m_id) {
        if (m_children.size() < c_longList) {
            insertChild_i(child);
            return;
        }
        unsorted.push_back({this, m_children.size()});
        m_childrenSorted = false;
    }
    if (m_children.empty()) {
        m_children.reserve(c_usualChildren);
    }
    child.m_parent = this;
    m_children.push_back(&child);
}

void TNode::sortChildren_i(std::size_t sortedCount) {
    // Of equal ids the later child stands first: so the new ones go backwards to the front, and
    // sorting keeps the order of equals.
    std::reverse(m_children.begin(), m_children.end());
    std::reverse(m_children.end() - static_cast<std::ptrdiff_t>(sortedCount), m_children.end());
    std::stable_sort(m_children.begin(), m_children.end(), isBelow);
    m_childrenSorted = true;
}

TNode* TNode::findChild_i(int id, top_node_type type) const {
    const auto first = std::partition_point(m_children.begin(), m_children.end(),
                                            [id](const TNode* child) { return child->m_id < id; });
    const auto found = std::find_if(first, m_children.end(), [id, type](const TNode* child) {
        return child->m_id != id || child->m_type == type;
    });
    return found != m_children.end() && (*found)->m_id == id ? *found : nullptr;
}

} // namespace pwr
