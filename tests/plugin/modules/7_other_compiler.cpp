#include "common/plugin/plugin_loader.h"

extern "C" KRCOMMON_PLUGIN_EXPORT const KRPluginInfo* krPluginInfo() {
    static const KRPluginInfo info = {sizeof(KRPluginInfo),
                                      KR_PLUGIN_INTERFACE_VERSION,
                                      "foreign",
                                      "1",
                                      "other-0",
                                      KR_PLUGIN_METRIC,
                                      nullptr};
    return &info;
}
