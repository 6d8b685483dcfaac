// Arbitrary text built into a tree: every node must hang where its parent says, sorted and numbered.

#include "common/topology/top_tree.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <vector>

namespace {

void require(bool fact) {
    if (!fact) {
        std::abort();
    }
}

/// Counts the nodes of the subtree on the way; four levels at most.
void check(const pwr::TNode& node, int& next) {
    require(node.getUniqueID() == next++);
    const pwr::TNode* before = nullptr;
    for (const pwr::TNode* child : node) {
        require(child->getParent() == &node);
        require(before == nullptr || before->getID() <= child->getID());
        before = child;
        check(*child, next);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
    pwr::TopTree tree;
    // Twice: the second time every node is there already, unless keys collide.
    for (int i = 0; i < 2; ++i) {
        tree.buildTopology(text.substr(0, text.size() / 2), data[0] % 5);
        tree.buildTopology(text.substr(text.size() / 2), 0);
    }
    tree.buildHWQMapping(text);
    std::vector<const pwr::TNode*> packages;
    tree.getAllPackages(packages);
    int next = 0;
    for (const pwr::TNode* package : packages) {
        check(*package, next);
    }
    require(static_cast<std::size_t>(next) == tree.getNumPackages() + tree.getNumModules() +
                                                  tree.getNumDies() + tree.getNumCores() +
                                                  tree.getNumThreads());
    return 0;
}
