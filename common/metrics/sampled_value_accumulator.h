#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "common/export.h"
#include "common/metrics/accumulator.h"

namespace pwr {

/// Statistics of sampled values, each value weighted by the time it stands for: smallest, largest, plain and
/// weighted average, and how often and for how long each distinct value was seen.
/// Summaries: 0 SAMPLE-COUNT, 1 MIN-MAX-AVG, 2 NUMBER-OF-OCCURENCES, 3 RELATIVE-FREQUENCY-PERCENTAGE, 4 MIN-MAX,
///            5 APPROXIMATED-RESIDENCY. Distinct values are kept only when 2, 3 or 5 is among them.
/// Types:     the first value decides. Values of another type are counted but cannot enter smallest, largest and
///            sum; text, handles and ranges have no such statistics.
/// Memory:    about 0.1 KB a row, 0.7 KB where distinct values are kept, and 64 bytes a distinct value. Without a
///            finite set of values the distinct ones are given up, with one warning, beyond 65,536 of them.
class KRCOMMON_API SampledValueAccumulator : public Accumulator {
public:
    /// The numbers of the summaries to report, in the order of their tables.
    SampledValueAccumulator(const std::vector<std::uint32_t>& summaries, Metric& metric);
    ~SampledValueAccumulator() override;

    int initialize(Metric& metric, const SystemMetadata& metadata) override;
    int finalize(Metric& metric) override;
    int processMessage(Metric& metric) override;

private:
    struct Impl;

    std::unique_ptr<Impl> m_impl;
};

} // namespace pwr
