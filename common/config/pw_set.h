#pragma once

#include <set>
#include <string>

namespace pwr {

/// Names in ascending order, as the hardware description keeps triggers, tracepoints, notifiers and groups.
using PWSet = std::set<std::string>;

} // namespace pwr
