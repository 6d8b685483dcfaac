#pragma once

#include "common/export.h"

#include <string>
#include <vector>

namespace pwr::platform {

/// The arguments of the program, without its name, as UTF-8 text. What main() got is used where the
/// system hands UTF-8 over; elsewhere the system is asked for the real ones.
KRCOMMON_API std::vector<std::string> commandLineArguments(int argc, const char* const* argv);

/// Makes the standard streams pass bytes as they are, so that a redirected report has the same bytes
/// on every system, and a console shows UTF-8. Where a write that cannot succeed would end the process
/// by a signal, it gives an error instead.
KRCOMMON_API void prepareStandardStreams();

} // namespace pwr::platform
