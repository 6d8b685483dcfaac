#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "common/driver_interface.h"
#include "common/export.h"

namespace pwr {

/// One telemetry endpoint and the file of the machine that holds its samples: each 64 bits, the lowest byte first,
/// sample 0 at info.address.
struct TelemetryEndpoint {
    _tw_aggregator_info info{};
    std::string file;
};

/// Where a machine says which endpoints it has, unless somebody names another file.
inline constexpr const char* TELEMETRY_ENDPOINT_TABLE = "/etc/tarnwell/telemetry-endpoints";

/// Reads a table of endpoints: a line each, of seven words (id, GUID, collection type, file, offset, size in bytes,
/// number of samples), numbers decimal or hexadecimal behind 0x; "#" begins a comment. What a line says wrongly is one
/// problem, "NAME:LINE: what", and the line is left out; the others count.
KRCOMMON_API std::vector<TelemetryEndpoint> readEndpointTable(const std::string& name, std::string_view text,
                                                              std::vector<std::string>& problems);

} // namespace pwr
