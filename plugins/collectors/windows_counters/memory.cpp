#include "plugins/collectors/windows_counters/counter_source.h"

#include <array>

#include <windows.h>

namespace windows_counters {

namespace {

class Memory : public CounterSource {
public:
    bool refresh() override {
        m_status.dwLength = sizeof m_status;
        return GlobalMemoryStatusEx(&m_status) != 0;
    }

    std::vector<Owner> owners() const override { return {{0, "SYSTEM"}}; }

    std::span<const char* const> counters() const override {
        static constexpr std::array<const char*, 2> NAMES{"total", "available"};
        return NAMES;
    }

    bool value(std::uint64_t, std::size_t counter, std::uint64_t& out) const override {
        out = std::array<std::uint64_t, 2>{m_status.ullTotalPhys, m_status.ullAvailPhys}.at(counter);
        return true;
    }

private:
    MEMORYSTATUSEX m_status{};
};

} // namespace

std::unique_ptr<CounterSource> makeMemory() {
    return std::make_unique<Memory>();
}

} // namespace windows_counters
