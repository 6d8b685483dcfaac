#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace windows_counters {

/// One place of the system that counters are asked from, all of them at once.
class CounterSource {
public:
    /// Whom counters belong to: a number that stays while the thing lives, and its name.
    struct Owner {
        std::uint64_t key;
        std::string name;
    };

    CounterSource() = default;
    CounterSource(const CounterSource&) = delete;
    CounterSource& operator=(const CounterSource&) = delete;
    virtual ~CounterSource() = default;

    /// Asks the system anew; false when it does not answer.
    virtual bool refresh() = 0;
    /// Whom the last refresh gave counters of; those that were never used are left out.
    virtual std::vector<Owner> owners() const = 0;
    /// The names of its counters, in the order of their numbers.
    virtual std::span<const char* const> counters() const = 0;
    /// One counter of the last refresh; false when its owner is gone.
    virtual bool value(std::uint64_t key, std::size_t counter, std::uint64_t& out) const = 0;
};

/// "processor-times": 100 nanosecond units per mode of each logical processor, numbered by group x 64.
std::unique_ptr<CounterSource> makeProcessorTimes();
/// "network-interfaces": bytes and packets of each interface.
std::unique_ptr<CounterSource> makeNetworkInterfaces();
/// "memory": bytes of the system's memory.
std::unique_ptr<CounterSource> makeMemory();

} // namespace windows_counters
