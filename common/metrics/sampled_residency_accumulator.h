#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "common/export.h"
#include "common/metrics/accumulator.h"

namespace pwr {

/// Sums the ticks that entities spent in their states (the descriptors) and relates them to the time over which
/// the entity was sampled: each sampling point counts once for an entity that appears in it.
/// Summaries: 0 SAMPLE-COUNT, 1 RESIDENCY-PERCENTAGE, 2 RESIDENCY-MILLISECOND, 3 RESIDENCY-COMBINED.
/// Samples whose ticks exceed their duration are left out, as the container announced when it took them.
/// Milliseconds are ticks / (clock MHz * 1000).
class KRCOMMON_API SampledResidencyAccumulator : public Accumulator {
public:
    /// The numbers of the summaries to report, in the order of their tables.
    SampledResidencyAccumulator(const std::vector<std::uint32_t>& summaries, Metric& metric);
    ~SampledResidencyAccumulator() override;

    int initialize(Metric& metric, const SystemMetadata& metadata) override;
    int finalize(Metric& metric) override;
    int processMessage(Metric& metric) override;

private:
    struct Impl;

    std::unique_ptr<Impl> m_impl;
};

} // namespace pwr
