#pragma once

#include <string>

#include "common/config/operation.h"
#include "common/export.h"
#include "common/pw_types.h"
#include "common/telemetry/aggr_telem.h"

namespace pwr {

/// An operation that reads a counter of a telemetry aggregator. Its keys say which; resolve() finds out where that
/// is. An immediate read leaves the whole sample in it, which the collector that serves the type puts there.
class KRCOMMON_API AggrTelemOperation : public HWOperation {
public:
    static constexpr const char* c_collectorType = "AGGR-TELEM";

    explicit AggrTelemOperation(const std::string& name);

    AggrTelemOperation* clone() const override;
    /// Aggregators are only read.
    bool isValidCommand(TWOpCommand command) const override;

    /// Finds the counter by the keys and the specification files: 0, or 1 after a message.
    int resolve();
    bool isResolved() const { return m_isResolved; }
    const AggrTelemCounterInfo& getCounterInfo() const { return m_info; }
    /// Another counter than the keys say, for whoever knows it.
    void setCounterInfo(const AggrTelemCounterInfo& info);

    pw_u64_t getSample() const { return m_sample; }
    void setSample(pw_u64_t sample) { m_sample = sample; }

private:
    AggrTelemCounterInfo m_info;
    pw_u64_t m_sample = 0;
    bool m_isResolved = false;
};

/// Reads one counter at once, outside a collection, through the collector that serves the type "AGGR-TELEM".
class KRCOMMON_API AggrTelemImmediate {
public:
    /// The platform whose telemetry has the counter, the counter, and its field ("" for the whole sample).
    AggrTelemImmediate(const std::string& ipName, const std::string& counter, const std::string& field);

    /// The counter's bits, moved to the bottom. 0; or 1 after a message, and the value is untouched.
    int read(pw_u64_t& value);
    /// The whole samples of all ids that are keys of the map, on the counter's endpoint.
    int read(std::map<pw_u16_t, pw_u64_t>& samples);

    /// Complete once a read succeeded in finding the counter.
    const AggrTelemCounterInfo& getCounterMetadata() const { return m_operation.getCounterInfo(); }

private:
    int find_i();
    int readSample_i(pw_u16_t id, pw_u64_t& sample);

    AggrTelemOperation m_operation;
    std::string m_counter;
};

} // namespace pwr
