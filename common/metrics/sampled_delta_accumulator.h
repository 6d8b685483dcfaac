#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "common/export.h"
#include "common/metrics/accumulator.h"

namespace pwr {

/// Sums amounts (bytes, energy, operations) and the time they accrued in, and reports totals and average rates:
/// rate = total * rate factor / seconds, in the rate quantity of the container's quantity.
/// Summaries: 0 SAMPLE-COUNT, 1 AVERAGE-RATE-TOTAL, 2 TOTAL-DELTA.
/// A container whose quantity has no rate form has totals only. Totals keep the type of the samples; integer
/// totals wrap.
class KRCOMMON_API SampledDeltaAccumulator : public Accumulator {
public:
    /// The numbers of the summaries to report, in the order of their tables.
    SampledDeltaAccumulator(const std::vector<std::uint32_t>& summaries, Metric& metric);
    ~SampledDeltaAccumulator() override;

    int initialize(Metric& metric, const SystemMetadata& metadata) override;
    int finalize(Metric& metric) override;
    int processMessage(Metric& metric) override;

private:
    struct Impl;

    std::unique_ptr<Impl> m_impl;
};

} // namespace pwr
