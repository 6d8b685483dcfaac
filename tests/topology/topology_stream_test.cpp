#include "common/metadata/serializer.h"
#include "common/topology/topology_change.h"
#include "tests/support/record_page.h"
#include "tests/topology/tree_text.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using namespace pwr;
using Bytes = std::vector<char>;
using Words = std::vector<int>;

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

Words chainOf(int nodes) {
    Words words;
    for (int depth = 0; depth < nodes; ++depth) {
        words.insert(words.end(), {depth, depth == 0 ? 1 : 6});
    }
    words.insert(words.end(), static_cast<std::size_t>(nodes), -1);
    return words;
}

TEST(TopologyStreamTest, treesAreAsThePageSays) {
    const Bytes bytes = recordExample("tree");
    TopTree tree;
    EXPECT_EQ(0, readInto(tree, bytes));
    EXPECT_EQ("Package_0=0(Die_4=1(Core_2=2(Thread_0=3 Thread_1=4)))", describe(tree));
    EXPECT_EQ(2U, tree.getNumThreads());
    EXPECT_EQ(bytes, written(tree));
    TopTree built;
    built.buildTopology("0 0 2 0x40000001 4 -1 1 0 2 0 4 -1", 0);
    EXPECT_EQ(bytes, written(built));
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        TopTree cut;
        EXPECT_EQ(1, readInto(cut, cutTo(bytes, size))) << size;
    }

    Serializer old(0);
    tree.serializeTreeDeprecated(old);
    EXPECT_EQ(streamOf(1, {0, 1, 4, 6, 2, 3, 0, 4, -1, 1, 4, -1, -1, -1, -1}), old.get_buffer());
    Serializer in(old.get_buffer());
    EXPECT_EQ(0, tree.deserializeTreeDeprecated(in)) << "in place of the nodes that were there";
    EXPECT_EQ(describe(built), describe(tree));
    EXPECT_EQ(streamOf(1, {0, 1, 4, 6, 2, 3, -1, 0, 4, -1, 1, 4, -1, -1, -1, -1}), written(tree))
        << "plain nodes tell no model";
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

TEST(TopologyStreamTest, changesAreAsThePageSays) {
    TopologyChange change({1, 3, 1, 1, 1}, 1);
    Serializer in(recordExample("change"));
    EXPECT_EQ(0, change.deserialize(in));
    std::ostringstream text;
    text << std::hex << change;
    EXPECT_EQ("Top Change:\n\ttsc = 78187493530\n\ttype = OFFLINE\n\tlogicalProcID = 5\n\tcoreID = 2\n"
              "\tmoduleID = -1\n\tpkgID = 0\n",
              text.str());
    Serializer out(0);
    change.serialize(out);
    EXPECT_EQ(recordExample("change"), out.get_buffer());
    Serializer unknown(std::vector<char>(22, 7));
    EXPECT_EQ(0, change.deserialize(unknown));
    EXPECT_EQ("NOP", change.getActionName());
}

} // namespace
