#include "common/metadata/cpu_metadata.h"
#include "common/metadata/system_metadata.h"
#include "common/model/data_descriptor.h"
#include "common/model/data_handle_provider.h"
#include "common/model/entity_handle.h"
#include "common/plugin/collection_data.h"
#include "common/plugin/plugin_environment.h"
#include "common/saved/instance_numbering.h"
#include "common/topology/top_tree.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

using namespace pwr;
using namespace pwr::saved;

namespace {

class InstanceNumberingTest : public ::testing::Test {
protected:
    InstanceNumberingTest() {
        auto record = std::make_unique<CPUMetadata>();
        // thread, package, core, core kind, die, module
        record->getCPUTopology().buildTopology("0 0 0 0 -1 -1  1 0 0 0 -1 -1", 0);
        m_system.platformMetadata[PlatformType::CPU] = std::move(record);
        DataHandleProvider::resetTopology(m_system);
        m_disk = EntityHandle::create("disks", "d", EntityHandle::getSystemHandle());
        EntityDescription description("sda", "a");
        description.setFieldName("A");
        description.setDescription("first disk");
        description.setHeader("Disks");
        m_part = EntityHandle::create(description, m_disk);
        m_root = EntityHandle::create("elsewhere", nullptr);
    }
    ~InstanceNumberingTest() override { g_pluginEnvironment->setTopologyManager(nullptr); }

    static const DataDescriptor* descriptor(const char* name, const Data& value) {
        return DataDescriptorBuilder(name)
            .setShortName("s")
            .setFieldName("f")
            .setHeader("h")
            .setValue(value)
            .build();
    }

    SystemMetadata m_system;
    const EntityHandle* m_disk;
    const EntityHandle* m_part;
    const EntityHandle* m_root;
};

void expectLike(const EntityHandle* made, const EntityHandle* original) {
    ASSERT_NE(made, nullptr);
    EXPECT_NE(made, original);
    EXPECT_EQ(made->getQualifiedName(), original->getQualifiedName());
    EXPECT_EQ(made->getShortName(), original->getShortName());
    EXPECT_EQ(made->getFieldName(), original->getFieldName());
    EXPECT_EQ(made->getDescription(), original->getDescription());
    EXPECT_EQ(made->getHeader(), original->getHeader());
}

} // namespace

TEST_F(InstanceNumberingTest, HandlesAreMadeAgainInTheirOrder) {
    const DataDescriptor* const reads = descriptor("reads", Data(-3));
    const DataDescriptor* const writes = descriptor("writes", Data("text"));
    const DataDescriptor* const plain = descriptor("plain", Data());
    const EntityHandle* const thread = EntityHandle::getCPUThreadHandle(1);
    const EntityHandle* const system = EntityHandle::getSystemHandle();

    MessageInstances first;
    first.instances = {{m_root, writes}, {m_part, reads}, {thread, reads}, {system, reads}};
    MessageInstances second;
    second.instances = {{m_disk, plain}, {m_part, writes}};
    InstanceNumbering numbering(m_system);
    const SavedInstances savedFirst = numbering.describe({1, 2, 3}, first, false);
    const SavedInstances savedSecond = numbering.describe({1, 2, 4}, second, true);
    EXPECT_EQ(savedFirst.newEntities.size(), 5U); // the disks too, as a parent
    EXPECT_EQ(savedFirst.newDescriptors.size(), 2U);
    EXPECT_TRUE(savedSecond.newEntities.empty());
    EXPECT_EQ(savedSecond.firstEntity, 6U);
    EXPECT_TRUE(savedSecond.isAddition);

    InstanceResolver resolver(m_system);
    MessageInstances madeFirst;
    MessageInstances madeSecond;
    std::string error;
    ASSERT_EQ(resolver.resolve(savedFirst, madeFirst, error), 0) << error;
    ASSERT_EQ(resolver.resolve(savedSecond, madeSecond, error), 0) << error;
    ASSERT_EQ(madeFirst.instances.size(), 4U);
    expectLike(madeFirst.instances[0].entity, m_root);
    expectLike(madeFirst.instances[1].entity, m_part);
    EXPECT_EQ(madeFirst.instances[2].entity, thread);
    EXPECT_EQ(madeFirst.instances[3].entity, system);
    EXPECT_EQ(madeSecond.instances[0].entity, madeFirst.instances[1].entity->getParent());
    EXPECT_EQ(madeSecond.instances[1].entity, madeFirst.instances[1].entity);
    EXPECT_LT(madeFirst.instances[1].entity->getId(), madeFirst.instances[0].entity->getId());

    const DataDescriptor* const madeReads = madeFirst.instances[1].descriptor;
    EXPECT_EQ(madeFirst.instances[2].descriptor, madeReads);
    EXPECT_EQ(madeSecond.instances[1].descriptor, madeFirst.instances[0].descriptor);
    EXPECT_LT(madeReads->getId(), madeFirst.instances[0].descriptor->getId());
    EXPECT_EQ(madeReads->getName() + madeReads->getShortName() + madeReads->getFieldName() +
                  madeReads->getHeader(),
              "readssfh");
    EXPECT_EQ(*madeReads->getValue(), Data(-3));
    EXPECT_EQ(*madeFirst.instances[0].descriptor->getValue(), Data("text"));
    EXPECT_EQ(madeSecond.instances[0].descriptor->getValue(), nullptr);

    // What is described twice has one handle.
    MessageInstances again;
    ASSERT_EQ(resolver.resolve(savedFirst, again, error), 0);
    EXPECT_EQ(again.instances[1].entity, madeFirst.instances[1].entity);
    EXPECT_EQ(again.instances[1].descriptor, madeReads);
}

TEST_F(InstanceNumberingTest, BadNumbersAreNamed) {
    SavedInstances good;
    good.newEntities.resize(2);
    good.newEntities[1].parent = 1;
    good.newDescriptors.resize(1);
    good.instances = {{2, 1}};
    const struct Case {
        const char* error;
        std::function<void(SavedInstances&)> spoil;
    } cases[] = {
        {"an instance belongs to entity 3, which is not there", [](auto& s) { s.instances[0].first = 3; }},
        {"an instance belongs to entity 0, which is not there", [](auto& s) { s.instances[0].first = 0; }},
        {"an instance belongs to descriptor 2, which is not there",
         [](auto& s) { s.instances[0].second = 2; }},
        {"entity 2 stands below entity 2, which is not there", [](auto& s) { s.newEntities[1].parent = 2; }},
        {"entity 1 is node 99, which the topology does not have",
         [](auto& s) {
             s.newEntities[0].kind = SavedEntity::Kind::TOPOLOGY;
             s.newEntities[0].node = 99;
         }},
        {"entity 1 is the system, which has no topology",
         [](auto& s) {
             s.newEntities[0].kind = SavedEntity::Kind::SYSTEM;
             g_pluginEnvironment->setTopologyManager(nullptr);
         }},
        // Those before were in a part of the file that is lost.
        {"an instance belongs to entity 2, which is not there",
         [](auto& s) {
             s.firstEntity = 3;
             s.newEntities[1].parent = 3;
         }},
        {"instances are numbered from nothing", [](auto& s) { s.firstEntity = UINT32_MAX; }},
    };
    for (const Case& bad : cases) {
        InstanceResolver resolver(m_system);
        SavedInstances spoilt = good;
        bad.spoil(spoilt);
        MessageInstances out;
        out.instances = {{m_disk, nullptr}};
        std::string error;
        EXPECT_EQ(resolver.resolve(spoilt, out, error), 1) << bad.error;
        EXPECT_EQ(error, bad.error);
        EXPECT_TRUE(out.instances.empty());
        EXPECT_EQ(resolver.resolve(good, out, error), 0) << error;
    }
}
