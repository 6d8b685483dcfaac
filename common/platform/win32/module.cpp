#include "common/platform/module.h"
#include "common/platform/file.h"
#include "common/platform/win32/wide_text.h"

namespace pwr::platform {

std::string modulePath(const void* codeAddress, std::string& error) {
    constexpr DWORD flags =
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    HMODULE module = nullptr;
    if (GetModuleHandleExW(flags, static_cast<LPCWSTR>(codeAddress), &module) == 0) {
        error = errorText(GetLastError());
        return "";
    }
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
        if (length == 0) {
            error = errorText(GetLastError());
            return "";
        }
        if (length < path.size()) {
            path.resize(length);
            return narrowText(path);
        }
        path.resize(path.size() * 2); // a full buffer means that the path was cut
    }
}

void addModuleSearchFolders(const std::string& libraryFolder, const std::string& pluginFolder) {
    SetDllDirectoryW(wideText(libraryFolder).c_str());
    AddDllDirectory(wideText(pluginFolder + "\\").c_str());
}

void* loadModule(const std::string& path, std::string& error) {
    // With these flags the folder of the module itself and those of addModuleSearchFolders() are searched
    // for what the module needs, and not the current folder of the process.
    constexpr DWORD flags = LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS;
    std::error_code failure; // leaves an empty path, which cannot be loaded
    const std::filesystem::path full = std::filesystem::absolute(nativePath(path), failure).make_preferred();
    const HMODULE module = LoadLibraryExW(full.c_str(), nullptr, flags);
    if (module == nullptr) {
        error = errorText(GetLastError());
    }
    return static_cast<void*>(module);
}

void* findSymbol(void* module, const char* name) {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(module), name));
}

const char* moduleSuffix() {
    return ".dll";
}

const char* systemWord() {
    return "windows";
}

} // namespace pwr::platform
