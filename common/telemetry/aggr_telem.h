#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "common/export.h"
#include "common/pw_types.h"
#include "common/telemetry/q_format.h"

namespace pwr {

class OperationMetadata;
class TelemetrySpecification;

/// One counter of a telemetry aggregator, resolved: where its samples are and which bits of them it has.
struct KRCOMMON_API AggrTelemCounterInfo {
    pw_u32_t guid = 0;
    pw_u16_t endpointId = 0;
    pw_u16_t sampleId = 0;
    std::string counterName; ///< "" when the counter was given by its sample id
    std::string fieldName;   ///< "" for the whole sample
    pw_u16_t lsb = 0;
    pw_u16_t msb = 63;
    tw_qformat format;

    /// The bits lsb to msb of a sample, moved to the bottom.
    pw_u64_t bitsOf(pw_u64_t sample) const;
};

/// The counters that the specification files of the loaded GUIDs describe. The file of a GUID is
/// "xml_configs/telemetry_0x<guid>.xml" beside the library.
/// Failure: a warning that names the file, and one that says what is off because of it; what was loaded stays.
class KRCOMMON_API AggrTelemIndex {
public:
    static AggrTelemIndex& instance();
    AggrTelemIndex(const AggrTelemIndex&) = delete;
    AggrTelemIndex& operator=(const AggrTelemIndex&) = delete;

    /// Reads the file of a GUID, also once more. 0; or 1, and nothing of the GUID is known any more.
    int load(pw_u32_t guid);
    void clear();
    bool isLoaded(pw_u32_t guid) const;

    // Silent; `id`, `lsb` and `msb` are untouched when there is no such counter.
    bool findSample(pw_u32_t guid, const std::string& name, pw_u16_t& id) const;
    bool findField(pw_u32_t guid, const std::string& sample, const std::string& field, pw_u16_t& lsb,
                   pw_u16_t& msb) const;
    /// The first loaded GUID, in order of loading, that has the sample.
    bool findGuidOf(const std::string& sample, pw_u32_t& guid) const;

private:
    AggrTelemIndex();
    ~AggrTelemIndex();

    const TelemetrySpecification* specificationOf_i(pw_u32_t guid) const;

    std::vector<pw_u32_t> m_order;
    std::map<pw_u32_t, std::unique_ptr<TelemetrySpecification>> m_specifications;
};

/// The counter that an operation of the collector type "AGGR-TELEM" reads, by the operation's keys, the index, which
/// is loaded where it is needed, and the loaded endpoints. Of the keys COUNTER-NAME or SAMPLE-ID is needed; GUID can
/// be left out where IP-NAME (a platform with telemetry GUIDs) or the counter's name tells it, ENDPOINT-ID where any
/// endpoint of the GUID will do. 0; or 1, after a message with the operation's name, and `info` is untouched.
KRCOMMON_API int parseAggrTelemOperationMetadata(const std::string& name, const OperationMetadata& operation,
                                                 AggrTelemCounterInfo& info);

/// The counter's name in the value that an operation was initialised with: what stands behind "COUNTER-NAME=" up to the
/// next ",", or, in a value without keys, the value up to the first ",", trimmed. "" when there is none.
KRCOMMON_API std::string getCounterNameFromInitValue(const std::string& value);

} // namespace pwr
