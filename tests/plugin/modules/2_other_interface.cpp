#include "common/plugin/plugin_loader.h"

// Of an interface to come: nothing behind its version may be looked at.
extern "C" KRCOMMON_PLUGIN_EXPORT const KRPluginInfo* krPluginInfo() {
    static const KRPluginInfo info = {8,      KR_PLUGIN_INTERFACE_VERSION + 1, nullptr, nullptr, nullptr, 0,
                                      nullptr};
    return &info;
}
