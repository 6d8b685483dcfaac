#include "common/platform/sync.h"

#include "common/platform/word_wait.h"

#include <algorithm>
#include <chrono>

#if defined(__x86_64__) || defined(__i386__)
#include <x86intrin.h>
#endif

namespace pwr::platform {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::uint32_t UNSET = 0;
constexpr std::uint32_t IS_SET = 1;
constexpr std::uint32_t HAS_SLEEPERS = 2; // not set, and setting must wake

// About what it costs to put a thread to sleep and to wake it on another processor, so that looking in vain at most
// doubles a wait, and long enough to catch a partner that is just being woken: both must look for either to gain.
constexpr std::chrono::microseconds LONGEST_LOOK{50};
constexpr int PAUSES_PER_GLANCE = 16;

// After it has proved useless, looking is tried again after so many waits, and then after twice as many each time.
constexpr std::uint32_t SHORTEST_REST = 64;
constexpr std::uint32_t LONGEST_REST = 4096;

/// Lets the other thread of a shared core work, and the set of the flag be seen early.
void pauseProcessor() {
#if defined(__x86_64__) || defined(__i386__)
    _mm_pause();
#endif
}

} // namespace

void AutoResetEvent::set() {
    if (raise()) {
        wakeOne();
    }
}

bool AutoResetEvent::raise() {
    return m_state.exchange(IS_SET, std::memory_order_acq_rel) == HAS_SLEEPERS;
}

void AutoResetEvent::wakeOne() {
    wakeOneOnWord(m_state);
}

void AutoResetEvent::wait() {
    if (!takeIfSet_i() && !look_i()) {
        sleep_i(NO_TIME_LIMIT);
    }
}

bool AutoResetEvent::waitFor(std::uint64_t nanoseconds) {
    return takeIfSet_i() || sleep_i(nanoseconds);
}

bool AutoResetEvent::takeIfSet_i() {
    std::uint32_t expected = IS_SET;
    return m_state.load(std::memory_order_relaxed) == IS_SET &&
           m_state.compare_exchange_strong(expected, UNSET, std::memory_order_acq_rel);
}

bool AutoResetEvent::look_i() {
    const std::uint32_t confidence = m_confidence.load(std::memory_order_relaxed);
    if (confidence == 0 && isResting_i()) {
        return false;
    }
    const auto end = Clock::now() + LONGEST_LOOK;
    do {
        for (int i = 0; i < PAUSES_PER_GLANCE; ++i) {
            pauseProcessor();
            if (takeIfSet_i()) {
                m_confidence.store(std::min(confidence + 1, MOST_CONFIDENCE), std::memory_order_relaxed);
                m_rest.store(SHORTEST_REST, std::memory_order_relaxed);
                return true;
            }
        }
    } while (Clock::now() < end);
    m_confidence.store(confidence > 0 ? confidence - 1 : 0, std::memory_order_relaxed);
    return false;
}

/// Looking has not paid: whether it is too early to try again.
bool AutoResetEvent::isResting_i() {
    const std::uint32_t rest = m_rest.load(std::memory_order_relaxed);
    if (m_notLooked.fetch_add(1, std::memory_order_relaxed) < rest) {
        return true;
    }
    m_notLooked.store(0, std::memory_order_relaxed);
    m_rest.store(std::clamp(rest * 2, SHORTEST_REST, LONGEST_REST), std::memory_order_relaxed);
    return false;
}

bool AutoResetEvent::sleep_i(std::uint64_t nanoseconds) {
    const bool isLimited = nanoseconds < static_cast<std::uint64_t>(INT64_MAX) / 2;
    const auto end = Clock::now() + std::chrono::nanoseconds(isLimited ? nanoseconds : 0);
    std::uint64_t left = isLimited ? nanoseconds : NO_TIME_LIMIT;
    for (;;) {
        // Taken as if others slept, too: one wake-up too many does no harm, one too few would.
        std::uint32_t state = IS_SET;
        if (m_state.compare_exchange_strong(state, HAS_SLEEPERS, std::memory_order_acq_rel)) {
            return true;
        }
        if (state == UNSET && !m_state.compare_exchange_strong(state, HAS_SLEEPERS)) {
            continue; // set, or another is about to sleep
        }
        // Only now: it may have been woken at the same moment, in vain, and others sleep on.
        if (left == 0) {
            return false;
        }
        waitOnWord(m_state, HAS_SLEEPERS, left);
        if (isLimited) {
            const auto now = Clock::now();
            left = now < end ? static_cast<std::uint64_t>(std::chrono::nanoseconds(end - now).count()) : 0;
        }
    }
}

} // namespace pwr::platform
