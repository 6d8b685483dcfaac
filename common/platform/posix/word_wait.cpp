#include "common/platform/word_wait.h"

#include <ctime>
#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace pwr::platform {
namespace {

constexpr std::uint64_t NANOSECONDS_PER_SECOND = 1000000000;

static_assert(sizeof(std::atomic<std::uint32_t>) == sizeof(std::uint32_t), "the system looks at the word");

} // namespace

void waitOnWord(const std::atomic<std::uint32_t>& word, std::uint32_t value, std::uint64_t nanoseconds) {
    timespec limit{};
    limit.tv_sec = static_cast<time_t>(nanoseconds / NANOSECONDS_PER_SECOND);
    limit.tv_nsec = static_cast<long>(nanoseconds % NANOSECONDS_PER_SECOND);
    // Interrupted, late or woken for nothing: the caller looks at the word in every case.
    syscall(SYS_futex, &word, FUTEX_WAIT_PRIVATE, value, nanoseconds == NO_TIME_LIMIT ? nullptr : &limit,
            nullptr, 0);
}

void wakeOneOnWord(std::atomic<std::uint32_t>& word) {
    syscall(SYS_futex, &word, FUTEX_WAKE_PRIVATE, 1, nullptr, nullptr, 0);
}

} // namespace pwr::platform
