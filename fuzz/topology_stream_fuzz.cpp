// Arbitrary bytes read as a topology tree, in the old form when the first byte is odd. Whatever stays of
// it must be sorted and numbered, and must be written and read again as the same bytes.

#include "common/metadata/serializer.h"
#include "common/topology/top_tree.h"
#include "fuzz/seed_writer.h"

#include <cstdint>
#include <cstdlib>
#include <set>
#include <vector>

namespace {

using namespace pwr;
using Bytes = std::vector<char>;

void require(bool fact) {
    if (!fact) {
        std::abort();
    }
}

/// Counts the nodes of the subtree on the way, which is not deeper than a tree may be.
void check(const TNode& node, int& next, std::size_t depth) {
    require(depth <= TopTree::c_maxDepth);
    require(node.getUniqueID() == next++);
    require((node.getType() == top_node_type::PACKAGE) == (node.getParent() == nullptr));
    const TNode* before = nullptr;
    for (const TNode* child : node) {
        require(child->getParent() == &node);
        require(before == nullptr || before->getID() <= child->getID());
        before = child;
        check(*child, next, depth + 1);
    }
}

void check(const TopTree& tree) {
    std::vector<const TNode*> nodes;
    tree.getAllPackages(nodes);
    int count = 0;
    for (const TNode* package : nodes) {
        check(*package, count, 1);
    }
    // Maps hold each node at most once, and some not at all.
    for (std::size_t type = 2; type < c_topNodeTypes; ++type) {
        tree.getAllNodesOfType(nodes, static_cast<top_node_type>(type));
    }
    require(std::set<const TNode*>(nodes.begin(), nodes.end()).size() == nodes.size());
    require(nodes.size() <= static_cast<std::size_t>(count));
}

Bytes written(const TopTree& tree) {
    Serializer out(0);
    tree.serializeTree(out);
    tree.serializeHWQ(out);
    return out.get_buffer();
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    if (const char* const folder = SeedWriter::folderOf(*argc, *argv)) {
        TopTree tree;
        tree.buildTopology("0 0 0 7 1 -1 1 0 0 7 1 -1 0 1 1 8 -1 3 0 1 2 8 -1 3", 0);
        tree.buildHWQMapping("0 1 2 3");
        Serializer old(0);
        tree.serializeTreeDeprecated(old);
        tree.serializeHWQ(old);
        const SeedWriter seeds(folder);
        seeds.write("tree", 0, written(tree));
        seeds.write("old_tree", 1, old.get_buffer());
        std::exit(0);
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    TopTree tree;
    Serializer in(Bytes(data + 1, data + size));
    const int result = data[0] % 2 == 0 ? tree.deserializeTree(in) : tree.deserializeTreeDeprecated(in);
    if (result == 0) {
        tree.deserializeHWQ(in);
    }
    check(tree);
    const Bytes once = written(tree);
    Serializer again(once);
    require(tree.deserializeTree(again) == 0 && tree.deserializeHWQ(again) == 0);
    check(tree);
    require(once == written(tree));
    return 0;
}
