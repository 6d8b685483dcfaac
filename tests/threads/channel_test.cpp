#include "tests/support/log_capture.h"
#include "tests/threads/actors.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace {

using Channel = pwr::TWThread::Channel;
using pwr::TWThreadMessage;

std::vector<TWThreadMessage> messageOf(int sig, std::size_t size) {
    std::vector<TWThreadMessage> message(1 + (size + sizeof(TWThreadMessage) - 1) / sizeof(TWThreadMessage));
    message.front() = {0, TWThreadMessage::ORDINARY, sig, static_cast<pw_u32_t>(size)};
    std::memset(message.data() + 1, sig, size);
    return message;
}

TEST(Channel, deliversWholeMessagesInOrder) {
    struct Direction {
        bool (Channel::*write)(const TWThreadMessage*);
        bool (Channel::*read)(std::vector<char>&);
    };
    for (const auto& [write, read] :
         {Direction{&Channel::writeRequestMessage, &Channel::readRequestMessage},
          Direction{&Channel::writeResponseMessage, &Channel::readResponseMessage}}) {
        pwr::LogCapture log;
        Channel channel;
        std::vector<char> message;
        const auto first = messageOf(1, 0);
        EXPECT_FALSE((channel.*write)(first.data()));
        ASSERT_TRUE(channel.init());
        EXPECT_FALSE(channel.init());
        // The first read leaves the second message announced.
        for (const std::size_t size : {0U, 5U, 0x100000U, 0x100001U, 1U}) {
            EXPECT_TRUE((channel.*write)(messageOf(static_cast<int>(size % 100) + 1, size).data()));
        }
        for (const std::size_t size : {0U, 5U, 0x100000U}) {
            ASSERT_TRUE((channel.*read)(message));
            const std::vector<char> expected(size, static_cast<char>(size % 100 + 1));
            ASSERT_EQ(sizeof(TWThreadMessage) + size, message.size());
            EXPECT_TRUE(
                std::equal(expected.begin(), expected.end(), message.begin() + sizeof(TWThreadMessage)));
        }
        EXPECT_FALSE((channel.*read)(message));
        EXPECT_EQ("WARNING: invalid payload size 1048577 received!\n", log.take());
        ASSERT_TRUE((channel.*read)(message)); // the payload that was refused is not taken for a header
        EXPECT_EQ(2, message.back());
        const TWThreadMessage boast{0, TWThreadMessage::ORDINARY, 1, UINT32_MAX}; // with nothing behind it
        EXPECT_TRUE((channel.*write)(&boast));
        EXPECT_FALSE((channel.*read)(message));
        EXPECT_EQ("WARNING: invalid payload size 4294967295 received!\n", log.take());
        EXPECT_TRUE((channel.*write)(first.data()));
        channel.destroy();
        EXPECT_FALSE((channel.*write)(first.data()));
    }
}

/// Each message, with its payload, reaches one of several readers, and none of them sleeps on while there is something
/// to read.
TEST(Channel, feedsSeveralReaders) {
    constexpr int kMessages = 3000;
    Channel channel;
    ASSERT_TRUE(channel.init());
    std::atomic<int> sum{0};
    std::atomic<int> torn{0};
    std::vector<std::thread> readers;
    for (int r = 0; r < 3; ++r) {
        readers.emplace_back([&] {
            std::vector<char> message;
            while (channel.readRequestMessage(message)) {
                const int sig = reinterpret_cast<const TWThreadMessage*>(message.data())->signal;
                if (sig == 0) {
                    return;
                }
                sum += sig;
                torn += message.size() == sizeof(TWThreadMessage) + 1 && message.back() == 1 ? 0 : 1;
            }
        });
    }
    for (int i = 0; i < kMessages + 3; ++i) {
        EXPECT_TRUE(channel.writeRequestMessage(messageOf(i < kMessages ? 1 : 0, 1).data()));
    }
    for (std::thread& reader : readers) {
        reader.join();
    }
    EXPECT_EQ(kMessages, sum);
    EXPECT_EQ(0, torn);
}

TEST(AutoResetEvent, limitsAWait) {
    pwr::platform::AutoResetEvent event;
    EXPECT_FALSE(event.waitFor(0));
    EXPECT_FALSE(event.waitFor(1000000));
    event.set();
    event.set();
    EXPECT_TRUE(event.waitFor(1));
    EXPECT_FALSE(event.waitFor(1)) << "set twice, it lets one through";
}

} // namespace
