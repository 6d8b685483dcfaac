#include "common/topology/topology_change.h"

#include <gtest/gtest.h>

namespace {

TEST(TopologyChangeTest, takesOverTheDriversRecord) {
    struct Case {
        pw_u32_t action;
        std::size_t coresPerModule;
        const char* name;
        int module;
    };
    for (const Case& c : {Case{1, 0, "OFFLINE", -1}, Case{2, 4, "ONLINE PREPARE", 2}, Case{3, 1, "ONLINE", 9},
                          Case{7, 100, "NOP", 0}, Case{0, 0, "NOP", -1}}) {
        pwr::TopologyChange change({~0ULL, c.action, 65535, 9, 3}, c.coresPerModule);
        EXPECT_EQ(~0ULL, change.getTimestamp());
        EXPECT_EQ(c.action, static_cast<pw_u32_t>(change.getActionType()));
        EXPECT_EQ(c.name, change.getActionName());
        EXPECT_EQ(65535, change.getLogicalProcessorID());
        EXPECT_EQ(9, change.getCoreID());
        EXPECT_EQ(3, change.getPackageID());
        EXPECT_EQ(c.module, change.getModuleID());
        change.resetTimestamp(5);
        EXPECT_EQ(5U, change.getTimestamp());
    }
}

} // namespace
