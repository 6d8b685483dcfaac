#include "tests/support/log_capture.h"
#include "tests/threads/actors.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <thread>

namespace {

using namespace kr_test;
using pwr::TWThread;

class ThreadTest : public testing::Test {
protected:
    void start(void (*onExit)() = nullptr) {
        thread = std::make_unique<TWThread>(actor, nullptr, onExit);
        ASSERT_EQ(0, thread->init());
        ASSERT_EQ(0, thread->start());
    }

    CountingActor actor;
    pwr::LogCapture log;
    std::unique_ptr<TWThread> thread;
};

TEST_F(ThreadTest, answersAsAskedFor) {
    start();
    EXPECT_TRUE(thread->isRunning());
    EXPECT_EQ(1, thread->signal(ECHO, true, true)); // -1 is a signal like others, not the kill
    EXPECT_EQ(0, thread->signal(ECHO, false, false));
    const int dropped = thread->signal(ECHO, true, false);
    const int id = thread->signal(ECHO, true, false);
    EXPECT_EQ(dropped + 1, id);
    EXPECT_EQ(4, thread->readResponse(id));
    EXPECT_EQ(5, thread->signal(ECHO, true, true));
    EXPECT_EQ("", log.take());
    EXPECT_EQ(0, thread->signal(ECHO, false, true));
    EXPECT_EQ("WARNING: cannot block if you don't require a response!\n", log.take());
    EXPECT_EQ(id + 2, thread->signal(ECHO, true, false)); // blocking signals have ids, too
    EXPECT_EQ(4711, thread->kill());
    EXPECT_EQ(7, actor.signals);
    EXPECT_TRUE(thread->isDead());
    EXPECT_FALSE(thread->isRunning());
    EXPECT_EQ(0, thread->timedJoin(10));
    EXPECT_EQ(0, thread->join());
    EXPECT_EQ("", log.take());
}

TEST_F(ThreadTest, limitsThePayload) {
    start();
    const std::string bytes(TWThread::MAX_PAYLOAD, '\1');
    EXPECT_EQ(0x100000, thread->signal(SUM, bytes.size(), bytes.data(), true, true));
    EXPECT_EQ(0, thread->signal(SUM, 3, nullptr, true, true)); // zeros
    const int refused = thread->signal(SUM, bytes.size() + 1, nullptr, true, false);
    EXPECT_EQ(-1, refused);
    EXPECT_EQ("WARNING: invalid payload size 1048577 received!\n", log.take());
    EXPECT_EQ(-1, thread->readResponse(refused)) << "nothing was asked that could be answered";
    EXPECT_EQ("WARNING: couldn't read response!\n", log.take());
    EXPECT_EQ(3, thread->signal(SUM, 3, bytes.data(), true, true));
}

std::atomic<int> g_exits{0};

TEST_F(ThreadTest, stopsWhenTheActorAsksForIt) {
    start([] { ++g_exits; });
    EXPECT_EQ(1, thread->signal(STOP, true, true));
    EXPECT_EQ(1, g_exits) << "the callback comes before the answer";
    EXPECT_EQ(0, thread->join());
    EXPECT_TRUE(thread->isDead());
    EXPECT_EQ(-1, thread->signal(ECHO, true, true));
    EXPECT_EQ("WARNING: couldn't read response!\n", log.take());
    EXPECT_EQ(-1, thread->kill());
    EXPECT_EQ("WARNING: killing a thread that isn't running?!\n", log.take());
    EXPECT_EQ(-1, thread->start());
    EXPECT_EQ("WARNING: invalid thread state 3!\n", log.take());
}

TEST_F(ThreadTest, endsWhenTheActorFails) {
    start();
    EXPECT_EQ(-1, thread->signal(FAIL, true, true));
    EXPECT_EQ(0, thread->join());
    EXPECT_TRUE(thread->isDead());
    EXPECT_EQ("ERROR: a thread ends, because its actor failed: no more paper\n"
              "WARNING: couldn't read response!\n",
              log.take());
}

TEST_F(ThreadTest, warnsWhenItsTagIsTraced) {
    g_pluginEnvironment->setVerbosity(static_cast<pwr::PWLogLevel>(1));
    TWThread idle(actor, nullptr, nullptr);
    EXPECT_EQ(-1, idle.kill());
    EXPECT_EQ("", log.take());
    g_pluginEnvironment->addCondLogTagForDebugLogging("tw-thread");
    EXPECT_EQ(-1, idle.kill());
    EXPECT_EQ("WARNING: killing a thread that isn't running?!\n", log.take());
}

TEST_F(ThreadTest, cannotBePinnedToAProcessorThatIsNotThere) {
    const pwr::platform::ProcessorNumber nowhere({999, 63});
    TWThread pinned(actor, nowhere.get(), nullptr);
    ASSERT_EQ(0, pinned.init());
    EXPECT_EQ(0, pinned.signal(ECHO, false, false));
    EXPECT_EQ(-1, pinned.start());
    EXPECT_EQ(0U, log.take().find("WARNING: Thread affinity attempt failed. Error: "));
    EXPECT_EQ(-1, pinned.kill());
    EXPECT_EQ(0, pinned.join());
    EXPECT_EQ(0, actor.signals) << "it ran where it must not";

    const pwr::platform::ProcessorNumber first({0, 64}); // numbers count modulo 64
    TWThread there(actor, first.get(), nullptr);
    ASSERT_EQ(0, there.init());
    EXPECT_EQ(0, there.start());
    EXPECT_EQ(1, there.signal(ECHO, true, true));
}

TEST_F(ThreadTest, endsCleanlyInEveryState) {
    const std::function<void(TWThread&)> steps[] = {
        [&](TWThread&) {},
        [&](TWThread& t) {
            actor.initResult = 5;
            EXPECT_EQ(-1, t.init());
            EXPECT_EQ(-1, t.start());
            EXPECT_EQ(-1, t.signal(ECHO, true, true)); // there is no channel
            actor.initResult = 0;
            EXPECT_EQ(0, t.init());
        },
        [&](TWThread& t) { t.init(); },
        [&](TWThread& t) {
            t.init();
            t.signal(SUM, 4, "abcd", true, false);
            EXPECT_EQ(0, t.join());
        },
        [&](TWThread& t) {
            t.init();
            t.start();
        },
        [&](TWThread& t) {
            t.init();
            t.start();
            t.signal(WAIT, true, false);
            t.signal(SUM, 4, "abcd", true, false);
            actor.gate.set();
        },
        [&](TWThread& t) {
            t.init();
            t.start();
            t.signal(STOP, false, false);
        },
        [&](TWThread& t) {
            t.init();
            t.start();
            t.kill();
        },
    };
    for (const auto& step : steps) {
        TWThread one(actor, nullptr, nullptr);
        step(one);
    }
}

/// Senders, each with payloads of its own, meet a thread that stops at some moment, by itself or because it is killed.
TEST_F(ThreadTest, survivesManySendersAndStops) {
    constexpr int kRounds = 60;
    constexpr int kSenders = 4;
    constexpr int kSignals = 50;
    for (int round = 0; round < kRounds; ++round) {
        start();
        std::mutex turn; // those who want an answer take turns
        std::vector<std::thread> senders;
        std::atomic<int> wrong{0};
        senders.reserve(kSenders);
        for (int s = 0; s < kSenders; ++s) {
            senders.emplace_back([&, s] {
                for (int i = 0; i < kSignals; ++i) {
                    const std::string bytes(static_cast<std::size_t>(s * 100 + i + 1), '\1');
                    thread->signal(SUM, bytes.size(), bytes.data(), false, false);
                    const std::lock_guard<std::mutex> lock(turn);
                    const int sum = thread->signal(SUM, bytes.size(), bytes.data(), true, true);
                    wrong += sum != static_cast<int>(bytes.size()) && sum != -1 ? 1 : 0;
                }
            });
        }
        if (round % 3 == 0) {
            thread->signal(STOP, false, false);
        } else if (round % 3 == 1) {
            const std::lock_guard<std::mutex> lock(turn);
            EXPECT_EQ(4711, thread->kill());
        }
        for (std::thread& sender : senders) {
            sender.join();
        }
        EXPECT_EQ(0, wrong);
        EXPECT_EQ(round % 3 == 2, thread->isRunning());
        thread.reset();
    }
}

} // namespace
