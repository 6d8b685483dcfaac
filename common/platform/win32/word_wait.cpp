#include "common/platform/word_wait.h"

#include "common/platform/win32/wide_text.h"

#include <algorithm>

namespace pwr::platform {
namespace {

constexpr std::uint64_t NANOSECONDS_PER_MILLISECOND = 1000000;
constexpr std::uint64_t LONGEST_WAIT_MILLISECONDS = 0x7FFFFFFF;

static_assert(sizeof(std::atomic<std::uint32_t>) == sizeof(std::uint32_t), "the system looks at the word");

} // namespace

void waitOnWord(const std::atomic<std::uint32_t>& word, std::uint32_t value, std::uint64_t nanoseconds) {
    const std::uint64_t milliseconds =
        (nanoseconds / NANOSECONDS_PER_MILLISECOND) +
        (nanoseconds % NANOSECONDS_PER_MILLISECOND >= NANOSECONDS_PER_MILLISECOND / 2 ? 1 : 0);
    const DWORD limit = nanoseconds == NO_TIME_LIMIT
                            ? INFINITE
                            : static_cast<DWORD>(std::min(milliseconds, LONGEST_WAIT_MILLISECONDS));
    WaitOnAddress(const_cast<std::atomic<std::uint32_t>*>(&word), &value, sizeof value, limit);
}

void wakeOneOnWord(std::atomic<std::uint32_t>& word) {
    WakeByAddressSingle(&word);
}

} // namespace pwr::platform
