#include "common/platform/win32/registry.h"

#include "common/platform/win32/wide_text.h"

namespace pwr::platform {

std::string registryText(const wchar_t* key, const wchar_t* name) {
    wchar_t text[256] = {};
    DWORD size = sizeof text;
    const LSTATUS status = RegGetValueW(HKEY_LOCAL_MACHINE, key, name, RRF_RT_REG_SZ, nullptr, text, &size);
    return status == ERROR_SUCCESS ? narrowText(text) : std::string();
}

std::uint32_t registryNumber(const wchar_t* key, const wchar_t* name) {
    DWORD number = 0;
    DWORD size = sizeof number;
    const LSTATUS status =
        RegGetValueW(HKEY_LOCAL_MACHINE, key, name, RRF_RT_REG_DWORD, nullptr, &number, &size);
    return status == ERROR_SUCCESS ? std::uint32_t{number} : 0;
}

std::vector<unsigned char> registryBytes(const wchar_t* key, const wchar_t* name) {
    std::vector<unsigned char> bytes(64);
    auto size = static_cast<DWORD>(bytes.size());
    const LSTATUS status =
        RegGetValueW(HKEY_LOCAL_MACHINE, key, name, RRF_RT_REG_BINARY, nullptr, bytes.data(), &size);
    bytes.resize(status == ERROR_SUCCESS ? size : 0);
    return bytes;
}

} // namespace pwr::platform
