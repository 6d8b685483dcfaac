#pragma once

#include <set>
#include <string>
#include <utility>

#include "common/export.h"
#include "common/pw_types.h"

namespace pwr {

class Parser;
class Platform;

/// Whether a value to be matched is a telemetry GUID that is no longer supported, of whichever platform; a warning then.
bool warnOfDeprecatedGUID(const Parser& parser, const std::pair<std::string, std::string>& specifier);

/// Enters into the environment which GUIDs each platform no longer supports.
void publishDeprecatedGUIDs(const Parser& parser);

/// Warns of every GUID that the platform is described with and that the machine lacks.
KRCOMMON_API void warnOfMissingGUIDs(const Platform& platform, const std::set<pw_u32_t>& machineGUIDs);

/// Reads a GUID that the user gave in place of a real one; false, with an error, when it is no number.
KRCOMMON_API bool readEmulatedGUID(const std::string& text, pw_u32_t& guid);

} // namespace pwr
