#pragma once

#include "common/export.h"

#include <cstdio>

namespace pwr::platform {

/// Whether a stream leads to a terminal that a person looks at.
KRCOMMON_API bool isTerminal(std::FILE* stream);

/// The terminal's width in columns; 0 when the stream leads to none or it does not say.
KRCOMMON_API unsigned terminalWidth(std::FILE* stream);

} // namespace pwr::platform
