#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "common/export.h"
#include "common/metrics/accumulator.h"

namespace pwr {

/// Counts traced events by name (the text of the value), for each entity and descriptor.
/// Summaries: 0 SAMPLE-COUNT, 1 EVENT-NAME-COUNTS, 2 TOP-TEN-EVENT. The top table lists at most ten names, the most
/// frequent first and equals by name; there is one such table for each entity and descriptor.
class KRCOMMON_API TracedEventAccumulator : public Accumulator {
public:
    /// The numbers of the summaries to report, in the order of their tables.
    TracedEventAccumulator(const std::vector<std::uint32_t>& summaries, Metric& metric);
    ~TracedEventAccumulator() override;

    int initialize(Metric& metric, const SystemMetadata& metadata) override;
    int finalize(Metric& metric) override;
    int processMessage(Metric& metric) override;

private:
    struct Impl;

    std::unique_ptr<Impl> m_impl;
};

} // namespace pwr
