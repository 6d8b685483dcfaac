#pragma once

#include "common/topology/top_tree.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace pwr {

/// The node with its unique id, and in brackets the children.
inline std::string describe(const TNode& node) {
    std::string below;
    for (const TNode* child : node) {
        EXPECT_EQ(&node, child->getParent());
        below += (below.empty() ? "" : " ") + describe(*child);
    }
    const std::string name = node.getName() + "=" + std::to_string(node.getUniqueID());
    return below.empty() ? name : name + "(" + below + ")";
}

inline std::string describe(const TopTree& tree) {
    std::vector<const TNode*> packages;
    tree.getAllPackages(packages);
    std::string text;
    for (const TNode* package : packages) {
        text += (text.empty() ? "" : " ") + describe(*package);
    }
    return text;
}

} // namespace pwr
