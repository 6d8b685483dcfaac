#include "common/tw_clock.h"
#include "tests/collectors/collector_fixture.h"

#include <gmock/gmock.h>

#include <thread>

#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

const fs::path INSTANCES = "/sys/kernel/tracing/instances";

/// The trace of the running kernel, where there is one and this process may have it.
class TracefsLiveTest : public tests::CollectorFixture {
protected:
    TracefsLiveTest() {
        load("tracefs", "/");
        m_message = makeMessage({{"WIDTH", "8"}}, {{"RAW-TYPE", "STRING"}, {"ENTITY", "{cpu}"}}, 1);
        m_message->addTracepointName("sched:sched_switch");
    }
    /// Names of instances that begin with the name of this program's and a process.
    static unsigned instancesOf(pid_t process) {
        unsigned count = 0;
        for (const auto& entry : fs::directory_iterator(INSTANCES)) {
            const std::string head = "tarnwell-" + std::to_string(process) + "-";
            count += entry.path().filename().string().starts_with(head) ? 1 : 0;
        }
        return count;
    }
    static pid_t deadProcess() {
        const pid_t process = fork();
        if (process == 0) {
            _exit(0);
        }
        waitpid(process, nullptr, 0);
        return process;
    }

    pwr::TWQPCClock m_performanceCounter;
    std::unique_ptr<pwr::MsgMetadata> m_message;
};

TEST_F(TracefsLiveTest, eventsCarryTheDefaultClocksTimeAndNothingIsLeftBehind) {
    const std::string seen = availability(*m_message);
    if (seen != "available") {
        GTEST_SKIP() << seen;
    }
    g_pluginEnvironment->setDefaultClock(&m_performanceCounter);
    const pid_t dead = deadProcess();
    fs::create_directory(INSTANCES / ("tarnwell-" + std::to_string(dead) + "-0"));
    fs::create_directory(INSTANCES /
                         ("tarnwell-" + std::to_string(getpid()) + "-0")); // of one with this number
    fs::create_directory(INSTANCES / "tarnwell-1-kept");                   // of a process that lives
    ASSERT_EQ(0, plugin().open(*m_message, m_instances)) << m_instances.reason;
    EXPECT_EQ(0U, instancesOf(dead));
    EXPECT_EQ(1U, instancesOf(1));
    fs::remove(INSTANCES / "tarnwell-1-kept");
    EXPECT_EQ(1U, instancesOf(getpid()));

    const std::uint64_t begin = m_performanceCounter.getTimestamp();
    std::thread([] {}).join(); // whoever waits gives its processor away
    const std::uint64_t end = m_performanceCounter.getTimestamp();
    std::vector<CollectionData> records;
    ASSERT_EQ(0, plugin().drain(*m_message, end, records));
    unsigned within = 0;
    for (const CollectionData& record : records) {
        EXPECT_EQ("sched_switch", record.getText(0));
        EXPECT_LT(record.header().timestamp, end);
        within += record.header().timestamp >= begin ? 1 : 0;
    }
    EXPECT_GE(within, 1U);
    plugin().close(*m_message);
    EXPECT_THAT(plugin().takeNotes(), testing::ElementsAre(testing::StartsWith("Traced events: ")));
    EXPECT_EQ(0U, instancesOf(getpid()));
}

TEST_F(TracefsLiveTest, withoutRightsThereIsAReasonAndAFix) {
    constexpr uid_t NOBODY = 65534;
    if (geteuid() != 0 || !fs::exists(INSTANCES)) {
        GTEST_SKIP() << "only root can give its rights up, and only where tracefs is mounted";
    }
    ASSERT_EQ(0, seteuid(NOBODY));
    const std::string seen = availability(*m_message);
    const int opened = plugin().open(*m_message, m_instances);
    ASSERT_EQ(0, seteuid(0));
    EXPECT_THAT(seen,
                testing::StartsWith("absent: this program may not trace (/sys/kernel/tracing) (run as root"));
    EXPECT_EQ(1, opened);
    EXPECT_THAT(m_instances.reason, testing::HasSubstr("may not trace"));
}

} // namespace
