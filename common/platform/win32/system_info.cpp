#include "common/platform/system_info.h"

#include "common/platform/win32/registry.h"
#include "common/platform/win32/wide_text.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
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

/// The byte behind the flags, which older headers count as reserved.
int efficiencyClassOf(const PROCESSOR_RELATIONSHIP& core) {
    return reinterpret_cast<const BYTE*>(&core)[1];
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

// The names of relationships that compilers' headers lack; systems that lack them refuse.
constexpr auto RELATION_DIE = static_cast<LOGICAL_PROCESSOR_RELATIONSHIP>(5);
constexpr auto RELATION_MODULE = static_cast<LOGICAL_PROCESSOR_RELATIONSHIP>(7);

constexpr unsigned FIRST_BUILD_OF_11 = 22000;

/// A text with another one behind it where both are there.
std::string joined(const std::string& text, const char* between, const std::string& more) {
    return text.empty() || more.empty() ? text + more : text + between + more;
}

} // namespace

std::vector<LogicalProcessor> logicalProcessors() {
    std::vector<LogicalProcessor> processors;
    const auto processorOf = [&](int thread) -> LogicalProcessor& {
        const auto at = std::find_if(processors.begin(), processors.end(),
                                     [&](const LogicalProcessor& p) { return p.thread == thread; });
        return at != processors.end() ? *at
                                      : processors.emplace_back(LogicalProcessor{thread, -1, -1, -1, -1, -1});
    };
    const auto number = [&](LOGICAL_PROCESSOR_RELATIONSHIP relationship, int LogicalProcessor::*place) {
        int next = 0;
        forEachRecord(relationship, [&](const Record& record) {
            for (const int thread : threadsOf(record.Processor)) {
                processorOf(thread).*place = next;
            }
            ++next;
        });
    };
    number(RelationProcessorPackage, &LogicalProcessor::package);
    number(RelationProcessorCore, &LogicalProcessor::core);
    number(RELATION_DIE, &LogicalProcessor::die);
    number(RELATION_MODULE, &LogicalProcessor::module);
    forEachRecord(RelationProcessorCore, [&](const Record& record) {
        for (const int thread : threadsOf(record.Processor)) {
            processorOf(thread).efficiencyClass = efficiencyClassOf(record.Processor);
        }
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
    const wchar_t* const key = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion";
    const std::string build = registryText(key, L"CurrentBuildNumber");
    const std::uint32_t update = registryNumber(key, L"UBR");
    system.name = registryText(key, L"ProductName");
    if (system.name.empty()) {
        system.name = "Windows";
    }
    // The product's name was left behind when its number rose.
    const std::size_t ten = system.name.find("Windows 10");
    if (ten == 0 && std::strtoul(build.c_str(), nullptr, 10) >= FIRST_BUILD_OF_11) {
        system.name.replace(0, 10, "Windows 11");
    }
    system.type = machineType();
    const std::uint32_t major = registryNumber(key, L"CurrentMajorVersionNumber");
    const std::string version =
        major == 0
            ? registryText(key, L"CurrentVersion")
            : std::to_string(major) + '.' + std::to_string(registryNumber(key, L"CurrentMinorVersionNumber"));
    system.version = joined(joined(version, ".", build), ".", update == 0 ? "" : std::to_string(update));
    system.edition = joined(registryText(key, L"EditionID"), " ", registryText(key, L"DisplayVersion"));
    return system;
}

bool keepsCountersInFiles() {
    return false;
}

} // namespace pwr::platform
