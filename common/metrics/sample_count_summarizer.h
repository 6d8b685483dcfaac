#pragma once

#include <memory>

#include "common/export.h"
#include "common/metrics/accumulator.h"

namespace pwr {

/// The SAMPLE-COUNT summary, which most accumulators offer: how many samples came for each entity and descriptor,
/// and the smallest, largest and average time between them in milliseconds. The first interval begins with the
/// collection. Every accepted sample counts, also one that its accumulator leaves out.
class KRCOMMON_API SampleCountSummarizer : public Accumulator {
public:
    explicit SampleCountSummarizer(Metric& metric);
    ~SampleCountSummarizer() override;

    int initialize(Metric& metric, const SystemMetadata& metadata) override;
    /// Pushes the one table.
    int finalize(Metric& metric) override;
    int processMessage(Metric& metric) override;

private:
    struct Impl;

    std::unique_ptr<Impl> m_impl;
};

} // namespace pwr
