#include "tests/collectors/collector_fixture.h"

namespace {

using namespace pwr;

// The machine is the one that the test runs on, so what is known of its counters is how they behave.
class WindowsCountersTest : public tests::CollectorFixture {};

TEST_F(WindowsCountersTest, timesOfAProcessorOnlyGrow) {
    load("windows_counters", "/");
    setTopology("0 0 0 0 -1 -1\n");
    const MsgMetadata* message = openShipped("CPU-TIME");
    ASSERT_NE(nullptr, message) << m_instances.reason;
    ASSERT_EQ(5U, m_instances.instances.size()) << "one processor in five modes";
    std::vector<std::uint64_t> last(5);
    std::uint64_t total = 0;
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(0U, read(*message).find("Thread_0/User="));
        for (std::size_t i = 0; i < last.size(); ++i) {
            EXPECT_TRUE(m_data.isPresent(i));
            EXPECT_LE(last[i], m_data.getBits(i)) << i;
            last[i] = m_data.getBits(i);
            total += last[i];
        }
        m_data.clear();
    }
    EXPECT_GT(total, 0U);
    EXPECT_EQ(1000U, m_clock.now) << "no other clock was asked";
}

TEST_F(WindowsCountersTest, memoryHasATotalAndLessAvailable) {
    load("windows_counters", "/");
    const MsgMetadata* message = openShipped("MEMORY");
    ASSERT_NE(nullptr, message) << m_instances.reason;
    read(*message);
    ASSERT_EQ(2U, m_data.size());
    EXPECT_GT(m_data.getBits(0), m_data.getBits(1));
    EXPECT_GT(m_data.getBits(1), 0U);
}

TEST_F(WindowsCountersTest, wrongOperationsSayWhatIsWrong) {
    load("windows_counters", "/");
    for (const auto& [keys, reason] : std::vector<std::pair<Keys, std::string>>{
             {{{"PATH", "moon"}}, "operation op: PATH \"moon\" is no source"},
             {{{"PATH", "memory"}, {"FIELD", "lost"}},
              "operation op: FIELD \"lost\" is no counter of memory"},
         }) {
        const auto message = makeMessage(keys, {}, 1);
        EXPECT_EQ(1, plugin().open(*message, m_instances));
        EXPECT_EQ(reason, m_instances.reason);
        EXPECT_EQ("invalid: " + reason, availability(*message));
    }
}

TEST_F(WindowsCountersTest, anotherMachineIsNotThisOne) {
    load("windows_counters", pwr::pw_getenv("KR_TEST_DATA") + "/machines/one_processor.bundle");
    ASSERT_NE(nullptr, shipped("CPU-TIME"));
    EXPECT_EQ("not here", availability(*shipped("CPU-TIME")));
    EXPECT_EQ(nullptr, openShipped("CPU-TIME"));
}

} // namespace
