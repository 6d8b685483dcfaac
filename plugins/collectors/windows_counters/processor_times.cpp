#include "plugins/collectors/windows_counters/counter_source.h"

#include <array>

#include <windows.h>

#include <winternl.h>

namespace windows_counters {

namespace {

constexpr std::uint64_t PROCESSORS_PER_GROUP = 64;

/// What the system answers for each processor of a group, in units of 100 nanoseconds. Kernel time holds
/// the idle, deferred-call and interrupt times; the published record calls the latter two reserved.
struct ProcessorRecord {
    LARGE_INTEGER idle;
    LARGE_INTEGER kernel;
    LARGE_INTEGER user;
    LARGE_INTEGER deferred;
    LARGE_INTEGER interrupt;
    ULONG interruptCount;
};

using QueryGroup = NTSTATUS(NTAPI*)(SYSTEM_INFORMATION_CLASS, void*, ULONG, void*, ULONG, ULONG*);

/// Exported by every system since groups exist, but in no import library.
QueryGroup queryGroupFunction() {
    const HMODULE module = GetModuleHandleA("ntdll.dll");
    const FARPROC function =
        module == nullptr ? nullptr : GetProcAddress(module, "NtQuerySystemInformationEx");
    return reinterpret_cast<QueryGroup>(reinterpret_cast<void*>(function));
}

std::uint64_t unitsOf(const LARGE_INTEGER& time) {
    return static_cast<std::uint64_t>(time.QuadPart);
}

class ProcessorTimes : public CounterSource {
public:
    bool refresh() override {
        m_groups.resize(GetActiveProcessorGroupCount());
        bool isAnswered = !m_groups.empty();
        for (WORD group = 0; group < m_groups.size(); ++group) {
            isAnswered = refreshGroup_i(group) && isAnswered;
        }
        return isAnswered;
    }

    std::vector<Owner> owners() const override {
        std::vector<Owner> owners;
        for (std::size_t group = 0; group < m_groups.size(); ++group) {
            for (std::size_t number = 0; number < m_groups[group].size(); ++number) {
                const std::uint64_t key = group * PROCESSORS_PER_GROUP + number;
                owners.push_back({key, std::to_string(key)});
            }
        }
        return owners;
    }

    std::span<const char* const> counters() const override {
        static constexpr std::array<const char*, 5> NAMES{"user", "system", "idle", "interrupt", "deferred"};
        return NAMES;
    }

    bool value(std::uint64_t key, std::size_t counter, std::uint64_t& out) const override {
        const std::size_t group = key / PROCESSORS_PER_GROUP;
        const std::size_t number = key % PROCESSORS_PER_GROUP;
        if (group >= m_groups.size() || number >= m_groups[group].size()) {
            return false;
        }
        const ProcessorRecord& record = m_groups[group][number];
        const std::uint64_t apart =
            unitsOf(record.idle) + unitsOf(record.interrupt) + unitsOf(record.deferred);
        const std::array<std::uint64_t, 5> times{
            unitsOf(record.user), unitsOf(record.kernel) > apart ? unitsOf(record.kernel) - apart : 0,
            unitsOf(record.idle), unitsOf(record.interrupt), unitsOf(record.deferred)};
        out = times.at(counter);
        return true;
    }

private:
    bool refreshGroup_i(WORD group) {
        std::vector<ProcessorRecord>& records = m_groups[group];
        records.resize(GetActiveProcessorCount(group));
        const auto size = static_cast<ULONG>(records.size() * sizeof(ProcessorRecord));
        ULONG used = 0;
        NTSTATUS status = -1;
        if (m_groups.size() == 1) {
            status =
                NtQuerySystemInformation(SystemProcessorPerformanceInformation, records.data(), size, &used);
        } else if (m_queryGroup != nullptr) {
            status = m_queryGroup(SystemProcessorPerformanceInformation, &group, sizeof group, records.data(),
                                  size, &used);
        }
        records.resize(status >= 0 ? used / sizeof(ProcessorRecord) : 0);
        return !records.empty();
    }

    QueryGroup m_queryGroup = queryGroupFunction();
    std::vector<std::vector<ProcessorRecord>> m_groups;
};

} // namespace

std::unique_ptr<CounterSource> makeProcessorTimes() {
    return std::make_unique<ProcessorTimes>();
}

} // namespace windows_counters
