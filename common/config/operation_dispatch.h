#pragma once

#include "common/config/operation.h"

namespace pwr {

/// The collector that serves an operation. Null after an error that begins with `what` and the operation's name
/// ("Trying to do immediate read of operation ").
CollectorPlugin* findCollector(const Operation* operation, const char* what);

} // namespace pwr
