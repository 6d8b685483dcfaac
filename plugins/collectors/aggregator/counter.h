#pragma once

#include <string>
#include <vector>

#include "common/plugin/collection_data.h"
#include "common/telemetry/aggr_telem.h"
#include "common/telemetry/endpoint_table.h"
#include "plugins/collectors/owner_patterns.h"

namespace aggregator {

/// One value of a message: a counter of an endpoint, how its bits are meant, and whom it belongs to.
struct Counter : collectors::Owner {
    pwr::AggrTelemCounterInfo info;
    std::string file;
    std::uint64_t offset = 0; ///< of its sample in the file
    collectors::RawType type = collectors::RawType::UINT;
    std::uint64_t mask = 0; ///< the bits of the counter that its declared width has

    /// The value in a sample, as a reading holds it.
    std::uint64_t valueIn(std::uint64_t sample) const;
};

/// The GUID whose file describes the counters of a machine's GUID: an emulated one stands for the real one.
pw_u32_t describedGuid(pw_u32_t guid);
/// Where the samples of an endpoint are; null when the table does not have it.
const pwr::TelemetryEndpoint* findEndpoint(const std::vector<pwr::TelemetryEndpoint>& endpoints, pw_u16_t id);
/// Finds a counter's sample: 0, or 1 with why not.
int findSample(const std::vector<pwr::TelemetryEndpoint>& endpoints, const pwr::AggrTelemCounterInfo& info,
               std::string& file, std::uint64_t& offset, std::string& reason);

/// Finds the counters of a message, one for each operation. 1 with reason and fix.
int resolveCounters(const pwr::MsgMetadata& message, const pwr::MachineFiles& machine,
                    const std::vector<pwr::TelemetryEndpoint>& endpoints, std::vector<Counter>& counters,
                    MessageInstances& out);

} // namespace aggregator
