#pragma once

#include "common/export.h"

#include <string>

namespace pwr::platform {

/// The full path of the module (library or program) whose code stands at an address; "" with the
/// system's words in `error` when it cannot be told.
KRCOMMON_API std::string modulePath(const void* codeAddress, std::string& error);

/// Makes the system look for modules in the library's folder and in its folder of plug-ins as well, where
/// the system has such a list. Both come without a separator at the end.
KRCOMMON_API void addModuleSearchFolders(const std::string& libraryFolder, const std::string& pluginFolder);

/// Loads a module for the life of the process: there is no unloading. A relative path counts from the
/// current folder and never makes the system search. Null with the system's words in `error` on failure.
KRCOMMON_API void* loadModule(const std::string& path, std::string& error);

/// The address of a symbol that a module exports; null when it does not.
KRCOMMON_API void* findSymbol(void* module, const char* name);

/// What the file names of modules end in: ".so" or ".dll".
KRCOMMON_API const char* moduleSuffix();

/// The word by which manifests name the running system: "linux" or "windows".
KRCOMMON_API const char* systemWord();

} // namespace pwr::platform
