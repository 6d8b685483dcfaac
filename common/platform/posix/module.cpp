#include "common/platform/module.h"

#include <cerrno>
#include <cstdlib>
#include <dlfcn.h>
#include <filesystem>
#include <memory>
#include <system_error>

namespace pwr::platform {

namespace {

std::string loaderErrorText() {
    const char* const text = dlerror();
    return text != nullptr ? text : "unknown error of the loader";
}

} // namespace

std::string modulePath(const void* codeAddress, std::string& error) {
    Dl_info info{};
    if (dladdr(codeAddress, &info) == 0 || info.dli_fname == nullptr) {
        error = "no module holds this address";
        return "";
    }
    // The loader keeps the name as it was given, which may be relative or a link.
    const std::unique_ptr<char, decltype(&std::free)> path(realpath(info.dli_fname, nullptr), &std::free);
    if (!path) {
        error = std::generic_category().message(errno);
        return "";
    }
    return path.get();
}

void addModuleSearchFolders(const std::string& /*libraryFolder*/, const std::string& /*pluginFolder*/) {
    // The list is fixed when the process starts; modules are loaded by full path instead.
}

void* loadModule(const std::string& path, std::string& error) {
    std::error_code failure; // leaves an empty path, which would name the program itself
    const std::filesystem::path full = std::filesystem::absolute(path, failure);
    if (full.empty()) {
        error = failure.message();
        return nullptr;
    }
    void* const module = dlopen(full.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (module == nullptr) {
        error = loaderErrorText();
    }
    return module;
}

void* findSymbol(void* module, const char* name) {
    return dlsym(module, name);
}

const char* moduleSuffix() {
    return ".so";
}

const char* systemWord() {
    return "linux";
}

} // namespace pwr::platform
