#include "tests/saved/collection_fixture.h"

namespace tests {

TEST_F(CollectionTest, givesBackWhatWasWritten) {
    const std::vector<char> all = collection(2);
    std::string error;
    const auto reader = opened(all, error);
    ASSERT_TRUE(reader) << error;
    EXPECT_TRUE(reader->hasIndex());
    EXPECT_EQ(6U, reader->totals().readings);
    EXPECT_EQ(18U, reader->totals().values);
    ASSERT_TRUE(reader->system());
    EXPECT_EQ(99 * c_second, reader->system()->stopTSC);
    ASSERT_EQ(1U, reader->declarations().size());
    EXPECT_EQ("MSG", dynamic_cast<const pwr::MsgMetadata&>(*reader->declarations()[0]).getMsgName());
    ASSERT_EQ(1U, reader->instances().size());
    ASSERT_EQ(1U, reader->instances()[0].newEntities.size());
    EXPECT_EQ("disk", reader->instances()[0].newEntities[0].name);
    ASSERT_EQ(1U, reader->configurations().size());
    EXPECT_EQ("all", reader->configurations()[0].second);
    EXPECT_EQ(std::vector<std::string>{"a note"}, reader->notes());

    const auto before = reader->totals();
    const Told now = readAll(*reader);
    EXPECT_TRUE(now.damage.isWhole()) << (now.damage.stretches.empty() ? "" : now.damage.stretches[0].reason);
    EXPECT_EQ((std::vector<std::string>{"6000000 #7: 6000 t6000 -", "6500000 #7: 6500 t6500 -",
                                        "7000000 #7: 7000 t7000 -", "7500000 #7: 7500 t7500 -",
                                        "8000000 #7: 8000 t8000 -", "8500000 #7: 8500 t8500 -"}),
              now.readings);
    EXPECT_EQ("4+1 ", now.instances) << "in front of the readings that need them";
    EXPECT_EQ(before.readings, now.totals.readings);
    EXPECT_EQ(before.values, now.totals.values);
    EXPECT_EQ(before.blocks, now.totals.blocks);
    EXPECT_EQ(before.lastTick, now.totals.lastTick);
    EXPECT_EQ(all.size(), now.totals.bytes);
}

} // namespace tests
