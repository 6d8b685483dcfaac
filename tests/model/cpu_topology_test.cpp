#include "common/metadata/cpu_metadata.h"
#include "common/metadata/serializer.h"
#include "common/metadata/system_metadata.h"
#include "common/model/data_handle_provider.h"
#include "common/model/entity_handle.h"
#include "common/topology/top_tree.h"
#include "tests/support/log_capture.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using namespace pwr;

namespace {

const char* const NO_HANDLE = "WARNING: Cannot retrieve a CPU Entity handle until it has been initialized\n";
const char* const NO_COUNT = "WARNING: Cannot retrieve a CPU Entity count until it has been initialized\n";

// thread, package, core, core kind, die, module
const char* const TWO_PACKAGES = "0 0 0 0 -1 -1  1 0 0 0 -1 -1  0 1 0 0 -1 3  0 1 1 0 -1 3";

class CpuTopologyTest : public ::testing::Test {
protected:
    CpuTopologyTest() { g_pluginEnvironment->setTopologyManager(nullptr); }
    ~CpuTopologyTest() override { g_pluginEnvironment->setTopologyManager(nullptr); }

    TopTree& tree() {
        auto& record = m_system.platformMetadata[PlatformType::CPU];
        if (record == nullptr) record = std::make_unique<CPUMetadata>();
        return dynamic_cast<CPUMetadata&>(*record).getCPUTopology();
    }
    void build(const char* text) { tree().buildTopology(text, 0); }

    static std::string counts() {
        return std::to_string(EntityHandle::getCPUPackageCount()) + " " +
               std::to_string(EntityHandle::getCPUModuleCount()) + " " +
               std::to_string(EntityHandle::getCPUCoreCount()) + " " +
               std::to_string(EntityHandle::getCPUThreadCount());
    }

    // Qualified names of everything below an entity, in order.
    static std::string namesBelow(const EntityHandle* entity) {
        std::string names;
        for (const EntityHandle* child : entity->getChildren()) {
            names += child->getQualifiedName() + " " + namesBelow(child);
        }
        return names;
    }

    SystemMetadata m_system;
    LogCapture m_log;
};

TEST_F(CpuTopologyTest, answersNothingBeforeItIsBuilt) {
    EXPECT_EQ(nullptr, EntityHandle::getCPUCoreHandle(0));
    EXPECT_EQ(nullptr, EntityHandle::getCPUEntityHandle(nullptr));
    EXPECT_EQ(std::string(NO_HANDLE) + NO_HANDLE, m_log.take());
    EXPECT_EQ("-1 -1 -1 -1", counts());
    EXPECT_EQ(std::string(NO_COUNT) + NO_COUNT + NO_COUNT + NO_COUNT, m_log.take());
}

TEST_F(CpuTopologyTest, makesAnEntityOfEachLevel) {
    build(TWO_PACKAGES);
    EXPECT_EQ(0, DataHandleProvider::initTopology(m_system));
    const EntityHandle* const system = EntityHandle::getSystemHandle();
    EXPECT_EQ("SYSTEM", system->getQualifiedName());
    EXPECT_EQ("Package_0 Package_0/Core_0 Package_0/Core_0/Thread_0 Package_0/Core_0/Thread_1 "
              "Package_1 Package_1/Module_3 Package_1/Module_3/Core_0 Package_1/Module_3/Core_0/Thread_0 "
              "Package_1/Module_3/Core_1 Package_1/Module_3/Core_1/Thread_0 ",
              namesBelow(system));
    EXPECT_EQ("2 1 3 4", counts());

    EXPECT_EQ("Package_0/Core_0", EntityHandle::getCPUCoreHandle(0)->getQualifiedName()) << "the first wins";
    EXPECT_EQ("Package_1/Module_3/Core_1", EntityHandle::getCPUCoreHandle(1)->getQualifiedName());
    EXPECT_EQ("Package_1", EntityHandle::getCPUPackageHandle(1)->getName());
    EXPECT_EQ("Module_3", EntityHandle::getCPUModuleHandle(3)->getName());
    EXPECT_EQ("Thread_1", EntityHandle::getCPUThreadHandle(1)->getName());
    EXPECT_EQ(nullptr, EntityHandle::getCPUThreadHandle(2));

    std::vector<const TNode*> cores;
    tree().getAllCores(cores);
    ASSERT_EQ(3U, cores.size());
    EXPECT_EQ("Package_1/Module_3/Core_0", EntityHandle::getCPUEntityHandle(cores[1])->getQualifiedName());
    EXPECT_EQ(nullptr, EntityHandle::getCPUEntityHandle(nullptr));
    EXPECT_EQ("", m_log.text());
}

TEST_F(CpuTopologyTest, passesDiesOver) {
    build("0 0 0 0 0 -1  0 0 0 0 1 -1");
    EXPECT_EQ(0, DataHandleProvider::initTopology(m_system));
    EXPECT_EQ("Package_0 Package_0/Die_0/Core_0 Package_0/Die_0/Core_0/Thread_0 "
              "Package_0/Die_1/Core_0 Package_0/Die_1/Core_0/Thread_0 ",
              namesBelow(EntityHandle::getSystemHandle()));
    EXPECT_EQ("1 0 2 2", counts());
    std::vector<const TNode*> dies;
    tree().getAllDies(dies);
    ASSERT_EQ(2U, dies.size());
    EXPECT_EQ(nullptr, EntityHandle::getCPUEntityHandle(dies[0]));
}

TEST_F(CpuTopologyTest, isBuiltOnceUntilItIsReset) {
    build("0 0 0 0 -1 -1");
    DataHandleProvider::initTopology(m_system);
    const EntityHandle* const core = EntityHandle::getCPUCoreHandle(0);
    const EntityHandle* const system = EntityHandle::getSystemHandle();
    tree().addNode(1, 5, -1, 0);
    EXPECT_EQ(0, DataHandleProvider::initTopology(m_system));
    EXPECT_EQ("1 0 1 1", counts());

    EXPECT_EQ(0, DataHandleProvider::resetTopology(m_system));
    EXPECT_EQ("1 0 2 2", counts());
    EXPECT_NE(core, EntityHandle::getCPUCoreHandle(0));
    EXPECT_NE(system, EntityHandle::getSystemHandle());
    EXPECT_EQ("Package_0/Core_0", core->getQualifiedName()) << "names stay as they were announced";
    std::vector<const TNode*> cores;
    tree().getAllCores(cores);
    EXPECT_EQ(nullptr, EntityHandle::getCPUEntityHandle(cores[1])) << "not numbered";
    EXPECT_NE(nullptr, EntityHandle::getCPUCoreHandle(5));
}

TEST_F(CpuTopologyTest, keepsTheSystemWhenTheRecordIsUnusable) {
    EXPECT_EQ(1, DataHandleProvider::initTopology(m_system));
    EXPECT_EQ("WARNING: CPU Metadata is broken", m_log.take());
    ASSERT_NE(nullptr, EntityHandle::getSystemHandle());
    EXPECT_EQ("0 0 0 0", counts());
    build(TWO_PACKAGES);
    EXPECT_EQ(0, DataHandleProvider::resetTopology(m_system));
    EXPECT_EQ("2 1 3 4", counts());
}

TEST_F(CpuTopologyTest, warnsAboutSavedTreesThatMakeNoSense) {
    struct Case {
        const char* name;
        std::vector<int> words; // id and type of each node, -1 behind its children
        const char* warning;
        const char* counts;
    };
    const char* const broken = "WARNING: Topology is broken";
    for (const Case& c : {
             Case{"a thread in a thread", {0, 1, 0, 4, 1, 4, -1, -1, -1}, broken, "1 0 0 1"},
             Case{"a core in a thread", {0, 1, 0, 4, 1, 3, 7, -1, -1, -1}, broken, "1 0 0 1"},
             Case{"more dies in dies than there are levels",
                  {0, 1, 1, 6, 2, 6, 3, 6, 4, 6, 5, 6, 6, 6, 0, 4, -1, -1, -1, -1, -1, -1, -1, -1},
                  broken,
                  "1 0 0 0"},
             Case{"a thread without core, below a tile", {0, 1, 0, 7, 0, 4, -1, -1, -1}, "", "1 0 0 1"},
             Case{"cut off", {0, 1, 0, 4}, "", "1 0 0 1"},
         }) {
        Serializer out(0);
        out.write(pw_u16_t{1});
        for (const int word : c.words) {
            out.write(word);
        }
        Serializer in(out.get_buffer());
        tree().deserializeTree(in);
        EXPECT_EQ(*c.warning == '\0' ? 0 : 1, DataHandleProvider::resetTopology(m_system)) << c.name;
        EXPECT_EQ(c.warning, m_log.take()) << c.name;
        EXPECT_EQ(c.counts, counts()) << c.name;
    }
}

TEST_F(CpuTopologyTest, replacesOnlyWhatItBuilt) {
    int foreign = 0;
    g_pluginEnvironment->setTopologyManager(&foreign);
    EXPECT_EQ(nullptr, EntityHandle::getSystemHandle());
    EXPECT_EQ(NO_HANDLE, m_log.take());
    build("0 0 0 0 -1 -1");
    EXPECT_EQ(0, DataHandleProvider::initTopology(m_system));
    void* const first = g_pluginEnvironment->getTopologyManager();
    g_pluginEnvironment->setPreCollectionTopology(first);
    EXPECT_EQ(0, DataHandleProvider::resetTopology(m_system));
    g_pluginEnvironment->setTopologyManager(first); // still alive, because the host kept it
    EXPECT_EQ("1 0 1 1", counts());
    g_pluginEnvironment->setPreCollectionTopology(nullptr);
}

} // namespace
