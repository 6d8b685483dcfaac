#include "common/platform/virtualization.h"

#include "common/platform/processor.h"
#include "common/platform/win32/registry.h"
#include "common/platform/win32/wide_text.h"

namespace pwr::platform {
namespace {

// The signature with which the system's own hypervisor answers the identification instruction.
constexpr const char* OWN_HYPERVISOR = "Microsoft Hv";

// Documented with their numbers, but not in every compiler's headers.
constexpr int CODE_INTEGRITY_INFORMATION = 103;
constexpr ULONG HYPERVISOR_PROTECTS_KERNEL = 0x400;
struct CodeIntegrityInformation {
    ULONG length;
    ULONG options;
};

using QuerySystemInformation = LONG(WINAPI*)(int kind, void* record, ULONG size, ULONG* needed);

bool isCodeIntegrityProtected() {
    const FARPROC address = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation");
    const auto query = reinterpret_cast<QuerySystemInformation>(reinterpret_cast<void*>(address));
    CodeIntegrityInformation information{sizeof(CodeIntegrityInformation), 0};
    return query != nullptr &&
           query(CODE_INTEGRITY_INFORMATION, &information, sizeof information, nullptr) >= 0 &&
           (information.options & HYPERVISOR_PROTECTS_KERNEL) != 0;
}

} // namespace

Virtualization virtualization() {
    Virtualization facts;
    facts.hasHypervisor = processorReport().hypervisor == OWN_HYPERVISOR;
    facts.protectsCodeIntegrity = isCodeIntegrityProtected();
    // The setting is a wish that only a hypervisor can fulfil; protected code integrity cannot be without it.
    const bool isWanted = registryNumber(L"SYSTEM\\CurrentControlSet\\Control\\DeviceGuard",
                                         L"EnableVirtualizationBasedSecurity") != 0;
    facts.hasSecureMode = facts.protectsCodeIntegrity || (facts.hasHypervisor && isWanted);
    return facts;
}

} // namespace pwr::platform
