#pragma once

#include "common/platform/module.h"
#include "common/plugin/plugin_loader.h"
#include "common/pw_utils.h"

#include <string>

namespace tests {

/// Loads a module of the build's plug-in folder as a host does; 1 when it is not there or refuses.
inline int loadModule(pwr::PluginLoader& loader, const std::string& name) {
    return loader.loadFile(pwr::pw_getenv("KR_TEST_BIN") + "/plugins/" + name +
                           pwr::platform::moduleSuffix());
}

} // namespace tests
