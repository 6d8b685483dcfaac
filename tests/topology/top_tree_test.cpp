#include "tests/support/log_capture.h"
#include "tests/topology/tree_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

using namespace pwr;

std::string idsOf(const TopTree& tree, top_node_type type) {
    std::vector<const TNode*> nodes;
    tree.getAllNodesOfType(nodes, type);
    std::string text;
    for (const TNode* node : nodes) {
        text += node->getFullyQualifiedName() + " ";
    }
    return text;
}

TEST(TopTreeTest, buildsTheTreeThatTheTextDescribes) {
    struct Case {
        const char* name;
        const char* text; // thread, package, core, model, die, module
        std::size_t coresPerModule;
        const char* tree;
    };
    for (const Case& c : {
             Case{"nothing", "", 0, ""},
             Case{"incomplete record", " 0 0 0 0 -1", 0, ""},
             Case{"core below package", "0 0 3 0 -1 -1", 0, "Package_0=0(Core_3=1(Thread_0=2))"},
             Case{"die and rest of a record", "1 0 2 0 4 -1\n7 7", 0,
                  "Package_0=0(Die_4=1(Core_2=2(Thread_1=3)))"},
             Case{"any order, any separator", "\t3 0 1 0 -1 0\r\n2 0 1 0 -1 0 1 0 0 0 -1 0\n0 0 0 0 -1 0", 0,
                  "Package_0=0(Module_0=1(Core_0=2(Thread_0=3 Thread_1=4) Core_1=5(Thread_2=6 Thread_3=7)))"},
             Case{"modules by cores", "0 0 5 0 -1 9", 4, "Package_0=0(Module_1=1(Core_5=2(Thread_0=3)))"},
             Case{"the same record twice", "0 1 0 0 -1 -1 0 1 0 0 -1 -1", 0,
                  "Package_1=0(Core_0=1(Thread_0=2))"},
             Case{"equal ids: the later in front", "0 0 0 0 -1 1 1 0 1 0 1 -1", 0,
                  "Package_0=0(Die_1=1(Core_1=2(Thread_1=3)) Module_1=4(Core_0=5(Thread_0=6)))"},
             Case{"bases, signs and what is no number", "010 0x1 \v+2 x 4294967295 -4294967295x", 0,
                  "Package_1=0(Module_1=1(Core_2=2(Thread_8=3)))"},
             Case{"absent written large", "08 0 0x 0 99999999999999999999 0xffffffff", 0,
                  "Package_0=0(Core_0=1(Thread_0=2))"},
         }) {
        TopTree tree;
        tree.buildTopology(c.text, c.coresPerModule);
        EXPECT_EQ(c.tree, describe(tree)) << c.name;
    }
}

TEST(TopTreeTest, keepsTheModelOfACoresFirstRecord) {
    TopTree tree;
    tree.buildTopology("0 0 0 0x40000001 -1 -1 1 0 0 7 -1 -1", 0);
    std::vector<const TNode*> cores;
    tree.getAllCores(cores);
    ASSERT_EQ(1U, cores.size());
    const auto* const core = dynamic_cast<const TNodeCore*>(cores[0]);
    ASSERT_NE(nullptr, core);
    EXPECT_EQ(0x40000001U, core->getCoreModelIDAndType());
    EXPECT_EQ(0xFFFFFFFFU, TNodeCore::c_32BitMask);
}

TEST(TopTreeTest, reportsModuleAndDieOnceAndKeepsTheModule) {
    const LogCapture log;
    for (int i = 0; i < 2; ++i) {
        TopTree tree;
        tree.buildTopology("0 0 0 0 0 2 1 0 0 0 0 2", 0);
        EXPECT_EQ("Package_0/Module_2 ", idsOf(tree, top_node_type::MODULE));
        EXPECT_EQ(0U, tree.getNumDies());
    }
    EXPECT_EQ("Topology has both a module AND a die ID -- choosing to report module ID only\n", log.text());
}

TEST(TopTreeTest, leavesOutNegativeProcessorsWithOneWarning) {
    const LogCapture log;
    TopTree tree;
    tree.buildTopology("0 0 0 0 -1 -1 -1 0 0 0 -1 -1 1 -2 0 0 -1 -1 2 0 4294967295 0 -1 -1", 0);
    EXPECT_EQ("Package_0=0(Core_0=1(Thread_0=2))", describe(tree));
    EXPECT_EQ("WARNING: left out 3 processor(s) of the topology text with a negative thread, package or "
              "core id, the first is number 2\n",
              log.text());
}

TEST(TopTreeTest, answersInKeyOrderNotInTreeOrder) {
    TopTree tree;
    tree.buildTopology("0 0 0 0 2 -1 1 1 0 0 -1 -1 2 0 9 0 -1 -1", 0);
    EXPECT_EQ("Package_0/Core_9 Package_1/Core_0 Package_0/Die_2/Core_0 ", idsOf(tree, top_node_type::CORE));
    struct Case {
        top_node_type type;
        std::size_t count;
    };
    for (const Case& c :
         {Case{top_node_type::NONE, 0}, Case{top_node_type::PACKAGE, 2}, Case{top_node_type::DIE, 1},
          Case{top_node_type::THREAD, 3}, Case{top_node_type::NULL_NODE, 0},
          Case{static_cast<top_node_type>(9), 0}, Case{static_cast<top_node_type>(0xFFFFFFFF), 0}}) {
        EXPECT_EQ(c.count, tree.getNumNodesOfType(c.type));
        std::vector<const TNode*> nodes(1);
        tree.getAllNodesOfType(nodes, c.type);
        EXPECT_EQ(1 + c.count, nodes.size()) << "appends";
    }
}

/// 600 processors in two packages; a third of the cores in modules, numbered from firstModule on.
std::vector<std::string> largeMachine(int firstModule) {
    std::vector<std::string> records;
    for (int cpu = 0; cpu < 600; ++cpu) {
        const int core = cpu / 2 % 150;
        records.push_back(std::to_string(cpu) + " " + std::to_string(cpu / 300) + " " + std::to_string(core) +
                          " 1 -1 " + (core < 100 ? "-1" : std::to_string(firstModule + core / 4)) + "\n");
    }
    return records;
}

std::string textOf(const std::vector<std::string>& records) {
    std::string text;
    for (const std::string& record : records) {
        text += record;
    }
    return text;
}

TEST(TopTreeTest, largeMachinesAreTheSameInAnyOrder) {
    std::vector<std::string> records = largeMachine(1000);
    TopTree ordered;
    ordered.buildTopology(textOf(records), 0);
    EXPECT_EQ(600U, ordered.getNumThreads());
    EXPECT_EQ(300U, ordered.getNumCores());
    EXPECT_EQ(26U, ordered.getNumModules());
    for (unsigned seed = 0; seed < 3; ++seed) {
        std::shuffle(records.begin(), records.end(), std::mt19937(seed));
        TopTree shuffled;
        shuffled.buildTopology(textOf(records), 0);
        EXPECT_TRUE(describe(ordered) == describe(shuffled)) << seed;
        EXPECT_TRUE(idsOf(ordered, top_node_type::THREAD) == idsOf(shuffled, top_node_type::THREAD)) << seed;
    }
}

TEST(TopTreeTest, buildingAtOnceEqualsBuildingRecordByRecord) {
    std::vector<std::string> records = largeMachine(0); // ids of modules and cores below a package collide
    std::shuffle(records.begin(), records.end(), std::mt19937(1));
    TopTree atOnce;
    atOnce.buildTopology(textOf(records), 0);
    TopTree oneByOne;
    for (const std::string& record : records) {
        oneByOne.buildTopology(record, 0);
    }
    EXPECT_TRUE(describe(atOnce) == describe(oneByOne));
}

TEST(TopTreeTest, addsSingleNodesWithoutNumbering) {
    TopTree tree;
    for (const auto& [thread, core, package] :
         {std::array{-1, 0, 0}, std::array{0, -1, 0}, std::array{0, 0, -1}}) {
        EXPECT_FALSE(tree.addNode(thread, core, -1, package));
    }
    EXPECT_EQ(0U, tree.getNumPackages());
    EXPECT_TRUE(tree.addNode(1, 0, -1, 1));
    EXPECT_TRUE(tree.addNode(0, 0, -1, 1));
    EXPECT_TRUE(tree.addNode(0, 0, 2, 0));
    EXPECT_TRUE(tree.addNode(0, 0, 2, 0));
    EXPECT_EQ(
        "Package_0=-1(Module_2=-1(Core_0=-1(Thread_0=-1))) Package_1=-1(Core_0=-1(Thread_0=-1 Thread_1=-1))",
        describe(tree));
    // Keys hold the parent's id only: thread 0 of core 0 is one entry, in the first package that had it.
    EXPECT_EQ("Package_1/Core_0/Thread_0 Package_1/Core_0/Thread_1 ", idsOf(tree, top_node_type::THREAD));
    tree.buildTopology("", 0);
    EXPECT_EQ(0, describe(tree).find("Package_0=0(Module_2=1(")) << "a build numbers what is there";
}

TEST(TopTreeTest, namesNodesByTypeAndId) {
    constexpr const char* names[] = {"NONE_7", "Package_7", "Module_7", "Core_7", "Thread_7",
                                     "SOC_7",  "Die_7",     "Tile_7",   "NULL_7"};
    for (unsigned type = 0; type < c_topNodeTypes; ++type) {
        EXPECT_EQ(names[type], TNode(7, static_cast<top_node_type>(type)).getName());
    }
}

TEST(TopTreeTest, mapsHardwareQueues) {
    TopTree tree;
    tree.buildHWQMapping("1 10 0x2\t20\r\n1 11 65539 -1 9");
    EXPECT_EQ((TopTree::HWQMapping{{1, 11}, {2, 20}, {3, 0xFFFF}}), tree.getHWQMapping());
    tree.buildHWQMapping("2 21");
    EXPECT_EQ(21, tree.getHWQMapping().at(2));
}

TEST(TopTreeTest, dumpsOnlyWhenTheTagIsOn) {
    const LogCapture log;
    TopTree tree;
    tree.buildTopology("0 0 0 0 -1 -1", 0);
    EXPECT_EQ("", log.text());
    g_pluginEnvironment->addCondLogTagForDebugLogging("topology");
    tree.dumpPackages();
    EXPECT_NE(std::string::npos, log.text().find("  Core_0 (unique id 1)\n")) << log.text();
}

} // namespace
