#include "common/platform/privilege.h"
#include "common/platform/win32/wide_text.h"

#include <memory>
#include <type_traits>
#include <winsvc.h>

namespace pwr::platform {

namespace {

struct CloseHandleOf {
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};
struct CloseServiceOf {
    void operator()(SC_HANDLE handle) const { CloseServiceHandle(handle); }
};
using Token = std::unique_ptr<std::remove_pointer_t<HANDLE>, CloseHandleOf>;
using Service = std::unique_ptr<std::remove_pointer_t<SC_HANDLE>, CloseServiceOf>;

Token processToken() {
    HANDLE token = nullptr;
    return Token(OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token) != 0 ? token : nullptr);
}

bool isElevated(HANDLE token) {
    TOKEN_ELEVATION elevation{};
    DWORD size = 0;
    return GetTokenInformation(token, TokenElevation, &elevation, sizeof(elevation), &size) != 0 &&
           elevation.TokenIsElevated != 0;
}

} // namespace

bool hasPrivilege(const std::string& name) {
    const Token token = processToken();
    if (!token) {
        return false;
    }
    if (name == "administrator") {
        return isElevated(token.get());
    }
    PRIVILEGE_SET asked{};
    asked.PrivilegeCount = 1;
    asked.Control = PRIVILEGE_SET_ALL_NECESSARY;
    BOOL held = FALSE;
    return LookupPrivilegeValueW(nullptr, wideText(name).c_str(), &asked.Privilege[0].Luid) != 0 &&
           PrivilegeCheck(token.get(), &asked, &held) != 0 && held != FALSE;
}

bool isSystemModuleLoaded(const std::string& name) {
    const Service manager(OpenSCManagerW(nullptr, nullptr, SC_MANAGER_CONNECT));
    if (!manager) {
        return false;
    }
    const Service service(OpenServiceW(manager.get(), wideText(name).c_str(), SERVICE_QUERY_STATUS));
    SERVICE_STATUS status{};
    return service && QueryServiceStatus(service.get(), &status) != 0 &&
           status.dwCurrentState == SERVICE_RUNNING;
}

bool isReadable(const std::string& path) {
    constexpr DWORD share = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const HANDLE file = CreateFileW(wideText(path).c_str(), GENERIC_READ, share, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return false;
    }
    CloseHandle(file);
    return true;
}

} // namespace pwr::platform
