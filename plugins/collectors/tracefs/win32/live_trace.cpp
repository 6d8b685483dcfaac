#include "plugins/collectors/tracefs/trace_source.h"

namespace tracefs {

bool canTrace(Refusal& refusal) {
    refusal.reason = "this system has no tracefs";
    return false;
}

std::unique_ptr<TraceSource> openLiveTrace(std::size_t /*pageSize*/, Refusal& refusal) {
    canTrace(refusal);
    return nullptr;
}

} // namespace tracefs
