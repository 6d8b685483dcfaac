// What a request and its answer cost between two threads, against the least that any channel can do: two words in memory
// and the system's own sleep on them where both share a processor, and two words that both look at where each has its
// own. Handing over a message, its memory, its queue and its lock come on top.

#include "bench/interleaved.h"
#include "common/tw_thread.h"

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <linux/futex.h>
#include <sched.h>
#include <string>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

namespace {

using bench::Nanoseconds;
using Word = std::atomic<std::uint32_t>;

void pinTo(unsigned processor) {
    cpu_set_t set;
    CPU_ZERO(&set);
    CPU_SET(processor, &set);
    sched_setaffinity(0, sizeof set, &set);
}

void sleepUntil(Word& word, std::uint32_t value) {
    for (std::uint32_t seen = word.load(); seen != value; seen = word.load()) {
        syscall(SYS_futex, &word, FUTEX_WAIT_PRIVATE, seen, nullptr, nullptr, 0);
    }
}

void wake(Word& word) {
    syscall(SYS_futex, &word, FUTEX_WAKE_PRIVATE, 1, nullptr, nullptr, 0);
}

void lookUntil(Word& word, std::uint32_t value) {
    while (word.load(std::memory_order_acquire) != value) {
        __builtin_ia32_pause();
    }
}

struct alignas(64) Line {
    Word word{0};
};

/// On one processor other programs' turns must not count; on two, a thread that looks costs time on both.
Nanoseconds now(bool isShared) {
    return isShared ? bench::processTime() : Nanoseconds(std::chrono::steady_clock::now().time_since_epoch());
}

/// The limit: a number goes one way and comes back the other.
template <bool Sleeps> Nanoseconds pingPong(unsigned processor, std::uint32_t rounds) {
    Line request;
    Line answer;
    const auto await = [](Word& word, std::uint32_t value) {
        Sleeps ? sleepUntil(word, value) : lookUntil(word, value);
    };
    const auto tell = [](Word& word, std::uint32_t value) {
        word.store(value);
        if (Sleeps) {
            wake(word);
        }
    };
    std::thread other([&] {
        pinTo(processor);
        for (std::uint32_t i = 1; i <= rounds; ++i) {
            await(request.word, i);
            tell(answer.word, i);
        }
    });
    Nanoseconds taken{};
    const auto round = [&](std::uint32_t i) {
        tell(request.word, i);
        await(answer.word, i);
    };
    round(1);
    const Nanoseconds begin = now(processor == 0);
    for (std::uint32_t i = 2; i <= rounds; ++i) {
        round(i);
    }
    taken = now(processor == 0) - begin;
    other.join();
    return taken;
}

class Echo : public pwr::TWThreadActor {
public:
    int handleSignal(int sig, std::size_t /*size*/, const void* /*payload*/, int& result) override {
        result = sig;
        return 0;
    }
    int handleKill() override { return 0; }
    int init() override { return 0; }
};

Nanoseconds signals(unsigned processor, std::uint32_t rounds, std::size_t payload) {
    const pwr::platform::ProcessorNumber place({0, static_cast<pw_u8_t>(processor)});
    Echo echo;
    pwr::TWThread thread(echo, place.get(), nullptr);
    if (thread.init() != 0 || thread.start() != 0) {
        std::abort();
    }
    const std::string bytes(payload, 'x');
    for (int i = 0; i < 1000; ++i) { // until it has found out whether looking pays
        thread.signal(i, payload, bytes.data(), true, true);
    }
    const Nanoseconds begin = now(processor == 0);
    for (std::uint32_t i = 1; i < rounds; ++i) {
        thread.signal(static_cast<int>(i), payload, bytes.data(), true, true);
    }
    return now(processor == 0) - begin;
}

} // namespace

int main() {
    constexpr std::uint32_t kRounds = 4000;
    constexpr std::uint32_t kShortRounds = 500; // short enough to run undisturbed now and then
    constexpr int kShortRepetitions = 60;
    const unsigned processors = std::thread::hardware_concurrency();
    pinTo(0);
    bench::Interleaved oneCore("Request and answer, both threads on one processor");
    oneCore.add("limit: two words, asleep in between", kRounds, [] { return pingPong<true>(0, kRounds); });
    oneCore.add("TWThread::signal", kRounds, [] { return signals(0, kRounds, 0); });
    oneCore.add("TWThread::signal with 64 bytes", kRounds, [] { return signals(0, kRounds, 64); });
    oneCore.report();
    if (processors < 2) {
        return 0;
    }
    bench::Interleaved twoCores("Request and answer, each thread on a processor of its own");
    twoCores.add("limit: two words, asleep in between", kShortRounds,
                 [] { return pingPong<true>(1, kShortRounds); });
    twoCores.add("two words, always looking", kShortRounds, [] { return pingPong<false>(1, kShortRounds); });
    twoCores.add("TWThread::signal", kShortRounds, [] { return signals(1, kShortRounds, 0); });
    twoCores.add("TWThread::signal with 64 bytes", kShortRounds, [] { return signals(1, kShortRounds, 64); });
    twoCores.report(kShortRepetitions, bench::Interleaved::Pick::BEST);
    return 0;
}
