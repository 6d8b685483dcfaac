#pragma once

#include <atomic>
#include <cstdint>

namespace pwr::platform {

constexpr std::uint64_t NO_TIME_LIMIT = UINT64_MAX;

/// Sleeps while @p word is @p value, for at most @p nanoseconds. It may also return early for no reason: look again.
void waitOnWord(const std::atomic<std::uint32_t>& word, std::uint32_t value, std::uint64_t nanoseconds);

/// Wakes one thread that sleeps on the word, if there is one.
void wakeOneOnWord(std::atomic<std::uint32_t>& word);

} // namespace pwr::platform
