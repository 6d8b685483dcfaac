#include "common/platform/system_info.h"

#include "common/platform/win32/wide_text.h"

#include <algorithm>
#include <bit>
#include <iterator>

namespace pwr::platform {
namespace {

constexpr int PROCESSORS_PER_GROUP = 64;

using Record = SYSTEM_LOGICAL_PROCESSOR_INFORMATION_EX;

/// Calls @p visit for every record of one relationship, in the order in which the system lists them.
template <class Visit> void forEachRecord(LOGICAL_PROCESSOR_RELATIONSHIP relationship, const Visit& visit) {
    DWORD size = 0;
    GetLogicalProcessorInformationEx(relationship, nullptr, &size);
    std::vector<unsigned char> buffer(size);
    auto* first = reinterpret_cast<Record*>(buffer.data());
    if (size == 0 || GetLogicalProcessorInformationEx(relationship, first, &size) == 0) {
        return;
    }
    for (DWORD offset = 0; offset < size;) {
        const auto* record = reinterpret_cast<const Record*>(buffer.data() + offset);
        visit(*record);
        offset += record->Size;
    }
}

/// The numbers of the logical processors that a record covers.
std::vector<int> threadsOf(const PROCESSOR_RELATIONSHIP& relationship) {
    std::vector<int> threads;
    for (WORD i = 0; i < relationship.GroupCount; ++i) {
        const GROUP_AFFINITY& group = relationship.GroupMask[i];
        for (auto mask = static_cast<std::uint64_t>(group.Mask); mask != 0; mask &= mask - 1) {
            threads.push_back(group.Group * PROCESSORS_PER_GROUP + std::countr_zero(mask));
        }
    }
    return threads;
}

/// The machine's type in the words that other systems use; the program may run emulated on another one.
std::string machineType() {
    struct Type {
        WORD number;
        const char* name;
    };
    constexpr Type types[] = {{PROCESSOR_ARCHITECTURE_AMD64, "x86_64"},
                              {PROCESSOR_ARCHITECTURE_ARM64, "aarch64"},
                              {PROCESSOR_ARCHITECTURE_INTEL, "i686"}};
    SYSTEM_INFO info{};
    GetNativeSystemInfo(&info);
    const auto* const found = std::find_if(std::begin(types), std::end(types), [&](const Type& type) {
        return type.number == info.wProcessorArchitecture;
    });
    return found != std::end(types) ? found->name : std::string();
}

std::string registryText(const wchar_t* name) {
    wchar_t text[256] = {};
    DWORD size = sizeof text;
    const wchar_t* key = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion";
    const LSTATUS status = RegGetValueW(HKEY_LOCAL_MACHINE, key, name, RRF_RT_REG_SZ, nullptr, text, &size);
    return status == ERROR_SUCCESS ? narrowText(text) : std::string();
}

} // namespace

std::vector<LogicalProcessor> logicalProcessors() {
    std::vector<LogicalProcessor> processors;
    const auto processorOf = [&](int thread) -> LogicalProcessor& {
        const auto at = std::find_if(processors.begin(), processors.end(),
                                     [&](const LogicalProcessor& p) { return p.thread == thread; });
        return at != processors.end() ? *at
                                      : processors.emplace_back(LogicalProcessor{thread, -1, -1, -1, -1});
    };
    int package = 0;
    forEachRecord(RelationProcessorPackage, [&](const Record& record) {
        for (const int thread : threadsOf(record.Processor)) {
            processorOf(thread).package = package;
        }
        ++package;
    });
    int core = 0;
    forEachRecord(RelationProcessorCore, [&](const Record& record) {
        for (const int thread : threadsOf(record.Processor)) {
            processorOf(thread).core = core;
        }
        ++core;
    });
    for (LogicalProcessor& processor : processors) {
        processor.package = std::max(processor.package, 0);
    }
    std::sort(processors.begin(), processors.end(),
              [](const LogicalProcessor& a, const LogicalProcessor& b) { return a.thread < b.thread; });
    return processors;
}

OperatingSystem operatingSystem() {
    OperatingSystem system;
    wchar_t host[MAX_COMPUTERNAME_LENGTH + 1] = {};
    DWORD length = MAX_COMPUTERNAME_LENGTH + 1;
    if (GetComputerNameW(host, &length) != 0) {
        system.hostName = narrowText(std::wstring(host, length));
    }
    system.name = registryText(L"ProductName");
    if (system.name.empty()) {
        system.name = "Windows";
    }
    system.type = machineType();
    system.version = registryText(L"CurrentBuildNumber");
    return system;
}

bool keepsCountersInFiles() {
    return false;
}

} // namespace pwr::platform
