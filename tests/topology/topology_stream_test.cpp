#include "common/metadata/serializer.h"
#include "common/topology/top_tree.h"
#include "common/topology/topology_change.h"
#include "tests/support/hex_text.h"
#include "tests/support/log_capture.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using namespace pwr;
using Bytes = std::vector<char>;
using Words = std::vector<int>;

constexpr int c_end = -1;
constexpr int c_model = 0x40000001;

Bytes streamOf(pw_u16_t packages, const Words& words) {
    Serializer out(0);
    out.write(packages);
    for (const int word : words) {
        out.write(word);
    }
    return out.get_buffer();
}

Bytes written(const TopTree& tree) {
    Serializer out(0);
    tree.serializeTree(out);
    return out.get_buffer();
}

int readInto(TopTree& tree, const Bytes& bytes) {
    Serializer in(bytes);
    return tree.deserializeTree(in);
}

/// Every node with its unique id, children in brackets.
std::string describe(const TNode& node) {
    std::string text = node.getName() + "=" + std::to_string(node.getUniqueID());
    std::string below;
    for (const TNode* child : node) {
        EXPECT_EQ(&node, child->getParent());
        below += (below.empty() ? "" : " ") + describe(*child);
    }
    return below.empty() ? text : text + "(" + below + ")";
}

std::string describe(const TopTree& tree) {
    std::vector<const TNode*> packages;
    tree.getAllPackages(packages);
    std::string text;
    for (const TNode* package : packages) {
        text += (text.empty() ? "" : " ") + describe(*package);
    }
    return text;
}

Words chainOf(int nodes) {
    Words words;
    for (int depth = 0; depth < nodes; ++depth) {
        words.insert(words.end(), {depth, depth == 0 ? 1 : 6});
    }
    words.insert(words.end(), static_cast<std::size_t>(nodes), c_end);
    return words;
}

TEST(TopologyStreamTest, writesNodesBeforeTheirChildrenAndMarksTheEnd) {
    TopTree tree;
    tree.buildTopology("0 0 2 0x40000001 -1 -1 1 0 2 0 -1 -1", 0);
    const Words words = {0, 1, 2, 3, c_model, 0, 4, c_end, 1, 4, c_end, c_end, c_end};
    EXPECT_EQ(streamOf(1, words), written(tree));
    TopTree back;
    EXPECT_EQ(0, readInto(back, written(tree)));
    EXPECT_EQ("Package_0=0(Core_2=1(Thread_0=2 Thread_1=3))", describe(back));
    EXPECT_EQ(written(tree), written(back));
    EXPECT_EQ(2U, back.getNumThreads());

    Serializer old(0);
    back.serializeTreeDeprecated(old);
    EXPECT_EQ(streamOf(1, {0, 1, 2, 3, 0, 4, c_end, 1, 4, c_end, c_end, c_end}), old.get_buffer());
    Serializer in(old.get_buffer());
    EXPECT_EQ(0, back.deserializeTreeDeprecated(in)) << "in place of the nodes that were there";
    EXPECT_EQ(describe(tree), describe(back));
    Words unknownModel = words;
    unknownModel[4] = -1;
    EXPECT_EQ(streamOf(1, unknownModel), written(back)) << "plain nodes tell no model";
    EXPECT_EQ(0, readInto(back, streamOf(0, {})));
    EXPECT_EQ("", describe(back));
}

TEST(TopologyStreamTest, keepsWhatWasReadUpToTheFirstFault) {
    struct Case {
        const char* name;
        pw_u16_t packages;
        Words words;
        int result;
        const char* tree;
    };
    for (const Case& c : {
             Case{"equal ids in order, others sorted",
                  1,
                  {0, 1, 7, 2, -1, 3, 6, -1, 3, 2, -1, -1},
                  0,
                  "Package_0=0(Die_3=1 Module_3=2 Module_7=3)"},
             Case{"packages are sorted", 2, {5, 1, -1, 2, 1, -1}, 0, "Package_2=0 Package_5=1"},
             Case{"fewer packages than told", 0xFFFF, {5, 1, -1}, 1, "Package_5=0"},
             Case{"the end mark of a package is missing", 1, {5, 1, 0, 4}, 1, "Package_5=0(Thread_0=1)"},
             Case{"a core without model word", 1, {5, 1, 0, 3}, 1, "Package_5=0"},
             Case{"unsorted when it breaks",
                  1,
                  {5, 1, 9, 2, -1, 0, 2, 0, 9, -1},
                  1,
                  "Package_5=0(Module_0=1 Module_9=2)"},
             Case{"package twice", 3, {5, 1, -1, 5, 1, 0, 4, -1, -1, 6, 1, -1}, 1, "Package_5=0"},
             Case{"package below a package", 1, {5, 1, 6, 1, -1, -1}, 1, "Package_5=0"},
             Case{"type 0", 1, {5, 1, 6, 0, -1, -1}, 1, "Package_5=0"},
             Case{"type 8", 1, {5, 1, 6, 8, -1, -1}, 1, "Package_5=0"},
             Case{"type 2^31", 1, {5, 1, 6, -2147483647 - 1, -1, -1}, 1, "Package_5=0"},
             Case{"a thread at the top", 1, {5, 4, -1}, 1, ""},
             Case{"an end mark at the top", 1, {-1, 1, -1}, 1, ""},
             Case{"types in an order that makes no sense",
                  1,
                  {5, 1, 0, 4, 0, 7, -1, 2, 5, -1, -1, -1},
                  0,
                  "Package_5=0(Thread_0=1(Tile_0=2 SOC_2=3))"},
         }) {
        TopTree tree;
        tree.addNode(1, 1, 1, 1);
        EXPECT_EQ(c.result, readInto(tree, streamOf(c.packages, c.words))) << c.name;
        EXPECT_EQ(c.tree, describe(tree)) << c.name;
        TopTree again;
        EXPECT_EQ(0, readInto(again, written(tree))) << c.name;
        EXPECT_EQ(c.tree, describe(again)) << c.name;
    }
    TopTree tree;
    EXPECT_EQ(0, readInto(tree, streamOf(1, chainOf(16))));
    EXPECT_EQ(15U, tree.getNumDies());
    EXPECT_EQ(1, readInto(tree, streamOf(1, chainOf(17))));
    EXPECT_EQ(15U, tree.getNumDies());
    EXPECT_EQ(1, readInto(tree, streamOf(1, chainOf(100000))));
}

TEST(TopologyStreamTest, noCutTreeIsTakenForAWholeOne) {
    TopTree tree;
    tree.buildTopology("0 0 0 7 1 -1 1 0 0 7 1 -1 0 1 1 8 -1 3", 0);
    const Bytes bytes = written(tree);
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        TopTree cut;
        EXPECT_EQ(1, readInto(cut, Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size))));
    }
}

TEST(TopologyStreamTest, keysHoldThePathInSigned16Bits) {
    // Keys order the look-up: a core's own id counts whole, in the thread's path it turns negative.
    TopTree tree;
    EXPECT_EQ(0, readInto(tree, streamOf(2, {0, 1, 40000, 3, 0, 0, 4, -1, -1, -1,
                                             1, 1, 2,     3, 0, 0, 4, -1, -1, -1})));
    std::vector<const TNode*> threads;
    tree.getAllThreads(threads);
    ASSERT_EQ(2U, threads.size());
    EXPECT_EQ("Package_1/Core_2/Thread_0", threads[0]->getFullyQualifiedName());
    // Die 2 and module 2 of a package have one key: their cores too, and the first stands for both.
    EXPECT_EQ(0, readInto(tree, streamOf(1, {0, 1, 2, 6, 9, 3, 0, -1, -1, 2, 2, 9, 3, 1, -1, -1, -1})));
    EXPECT_EQ(1U, tree.getNumCores());
    EXPECT_EQ("Package_0=0(Die_2=1(Core_9=2) Module_2=3(Core_9=4))", describe(tree));
}

TEST(TopologyStreamTest, savesTheHardwareQueues) {
    TopTree tree;
    tree.buildHWQMapping("2 20 1 0xabcd");
    Serializer out(0);
    tree.serializeHWQ(out);
    EXPECT_EQ(bytesOf("02 00  01 00 cd ab  02 00 14 00"), out.get_buffer());
    TopTree back;
    back.buildHWQMapping("9 9");
    Serializer in(out.get_buffer());
    EXPECT_EQ(0, back.deserializeHWQ(in));
    EXPECT_EQ(tree.getHWQMapping(), back.getHWQMapping());
    Serializer cut(bytesOf("02 00  01 00 cd ab  02 00 14"));
    EXPECT_EQ(1, back.deserializeHWQ(cut));
    EXPECT_TRUE(back.getHWQMapping().empty());
}

TEST(TopologyStreamTest, savesChanges) {
    TopologyChange change({0x123456789A, 7, 5, 2, 1}, 0);
    Serializer out(0);
    change.serialize(out);
    const Bytes bytes = out.get_buffer();
    EXPECT_EQ(bytesOf("9a 78 56 34 12 00 00 00  07 00 00 00  05 00  02 00  01 00  ff ff ff ff"), bytes);
    std::ostringstream text;
    text << std::hex << change;
    EXPECT_EQ("Top Change:\n\ttsc = 78187493530\n\ttype = NOP\n\tlogicalProcID = 5\n\tcoreID = 2\n"
              "\tmoduleID = -1\n\tpkgID = 1\n",
              text.str());
    TopologyChange back({1, 3, 1, 1, 1}, 1);
    Serializer in(bytes);
    EXPECT_EQ(0, back.deserialize(in));
    EXPECT_EQ("NOP", back.getActionName());
    EXPECT_EQ(-1, back.getModuleID());
    LogCapture log;
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        const char* const item = size < 8    ? "timestamp"
                                 : size < 12 ? "type"
                                 : size < 14 ? "cpu id"
                                 : size < 16 ? "core id"
                                 : size < 18 ? "pkg id"
                                             : "module id";
        Serializer cut(Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)));
        EXPECT_EQ(-1, back.deserialize(cut));
        EXPECT_EQ(std::string("WARNING: couldn't extract ") + item + " for topology change!\n", log.take());
    }
}

} // namespace
