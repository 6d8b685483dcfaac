#include "tarnwell/read_worker.h"

#include "common/machine_files.h"
#include "common/metadata/msg_metadata.h"
#include "common/plugin/collector_plugin.h"
#include "tarnwell/collection_clock.h"
#include "tarnwell/foreign_clocks.h"
#include "tarnwell/message_reader.h"
#include "tests/support/log_capture.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

namespace {

using namespace tarnwell;

/// Notes on which thread it works; message FAULT throws.
class SpyCollector : public CollectorPlugin {
public:
    SpyCollector() : CollectorPlugin("spy") {}
    const char* getDescription() const override { return "tells where it works"; }
    std::vector<std::string> getCollectorTypes() const override { return {"SPY"}; }
    int open(const pwr::MsgMetadata&, MessageInstances&) override { return 0; }
    int read(const pwr::MsgMetadata& message, CollectionData& out) override {
        reader = std::this_thread::get_id();
        if (message.getMsgName() == "FAULT") {
            throw std::runtime_error("broken");
        }
        out.header().timestamp = 7;
        return out.add(message.getMsgID());
    }
    int drain(const pwr::MsgMetadata&, std::uint64_t untilTick, std::vector<CollectionData>& out) override {
        out.emplace_back().header().timestamp = untilTick - 1;
        return 0;
    }
    std::thread::id reader;
};

class ReadWorkerTest : public testing::Test {
protected:
    ReadWorkerTest() {
        for (const char* const name : {"A", "FAULT", "B", "TRACED"}) {
            auto& message = messages.emplace_back(std::make_unique<pwr::MsgMetadata>(
                1, 2, static_cast<pw_u32_t>(messages.size() + 1), "cap", name));
            if (std::string(name) == "TRACED") {
                message->addTracepointName("point");
            } else {
                message->addTrigger("POLL");
            }
            reader.add({&collector, message.get(), nullptr, -1});
        }
    }

    std::string reason;
    std::unique_ptr<pwr::MachineFiles> machine = pwr::openMachine("/", reason);
    CollectionClock clock{*machine};
    SpyCollector collector;
    std::vector<std::unique_ptr<pwr::MsgMetadata>> messages;
    MessageReader reader;
    pwr::LogCapture log;
    ReadingBatch batch;
};

TEST_F(ReadWorkerTest, readsAtItsTickOnItsOwnThread) {
    ReadWorker worker(reader, clock);
    ASSERT_EQ(0, worker.start(std::nullopt, reason)) << reason;
    for (int round = 0; round < 2; ++round) {
        const std::uint64_t at = clock.now() + static_cast<std::uint64_t>(clock.ticksPerSecond() / 500);
        batch.clear();
        worker.read("POLL", at, batch);
        ASSERT_TRUE(worker.finish());
        EXPECT_LE(at, batch.begin);
        EXPECT_NE(std::this_thread::get_id(), collector.reader);
        ASSERT_EQ(2U, batch.size());
        EXPECT_EQ(3, batch.records()[1].header().id.message);
        EXPECT_EQ(3U, batch.records()[1].getBits(0));
        EXPECT_EQ(std::vector<std::size_t>{1}, batch.failed);
        EXPECT_EQ("ERROR: message FAULT: broken\n", log.take());
    }
    batch.clear();
    worker.drain(0, 100, batch);
    ASSERT_TRUE(worker.finish());
    worker.drain(0, 200, batch);
    ASSERT_TRUE(worker.finish());
    ASSERT_EQ(2U, batch.size());
    EXPECT_EQ(199U, batch.records()[1].header().timestamp);
    EXPECT_EQ(4, batch.records()[1].header().id.message);
}

TEST_F(ReadWorkerTest, givesUpATickThatIsFarAway) {
    ReadWorker worker(reader, clock);
    ASSERT_EQ(0, worker.start(std::nullopt, reason)) << reason;
    worker.read("POLL", UINT64_MAX, batch);
    worker.cancel();
    EXPECT_FALSE(worker.finish());
    EXPECT_FALSE(worker.finish()) << "nothing was ordered";
    EXPECT_EQ(0U, batch.size());
    worker.read("POLL", 0, batch);
    EXPECT_TRUE(worker.finish());
    worker.read("POLL", UINT64_MAX, batch); // the destructor does not wait for it
}

TEST_F(ReadWorkerTest, saysWhyItCannotBePinned) {
    ReadWorker worker(reader, clock);
    EXPECT_EQ(1, worker.start(pwr::platform::ProcessorPlace{999, 5}, reason));
    EXPECT_EQ(0U, reason.find("processor 999:5 cannot read the counters: it is not there")) << reason;
}

TEST(ForeignClocks, convertByTheLatestMomentBefore) {
    const auto moment = [](pw_u64_t own, pw_u64_t standard) {
        return std::vector<pwr::TWClockSync>{{"own", "", 1.0F, own, "standard", "", 1000.0F, standard}};
    };
    ForeignClocks clocks;
    clocks.addMoment(moment(100, 1000000));
    clocks.addMoment(moment(200, 1100500)); // the own clock is slow
    const std::pair<pw_u64_t, pw_u64_t> cases[] = {{50, 1000000},  {100, 1000000}, {101, 1001000},
                                                   {199, 1099000}, {200, 1100500}, {300, 1200500}};
    for (auto [own, standard] : cases) {
        EXPECT_TRUE(clocks.convert("own", own));
        EXPECT_EQ(standard, own);
    }
    pw_u64_t unchanged = 5;
    EXPECT_FALSE(clocks.convert("other", unchanged));
    EXPECT_EQ(5U, unchanged);
}

} // namespace
