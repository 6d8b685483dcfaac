#include "common/export.h"

extern "C" KRCOMMON_PLUGIN_EXPORT int somethingElse() {
    return 1;
}
