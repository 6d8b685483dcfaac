#include "common/metadata/handled_version.h"

#include "common/metadata/saved_version.h"

#include <atomic>

namespace pwr {

namespace {

constinit std::atomic<pw_u32_t> g_handledVersion{c_currentSavedVersion};

} // namespace

pw_u32_t getHandledVersion() {
    return g_handledVersion.load(std::memory_order_relaxed);
}

void setHandledVersion(pw_u32_t version) {
    g_handledVersion.store(version, std::memory_order_relaxed);
}

} // namespace pwr
