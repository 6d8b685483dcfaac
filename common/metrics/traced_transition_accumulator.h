#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "common/export.h"
#include "common/metrics/accumulator.h"

namespace pwr {

/// How long each entity was in each of its states, and how often it entered them, from a trace of changes.
/// Summaries: 0 RESIDENCY-PERCENTAGE, 1 RESIDENCY-MILLISECOND, 2 TRANSITION-COUNTS, 3 RESIDENCY-COMBINED.
/// The time up to a change belongs to the state that it ends; before the first change the state is unknown and
/// the time belongs to none; after the last one it goes on to the end of the collection when that is known.
class KRCOMMON_API TracedTransitionAccumulator : public Accumulator {
public:
    /// The numbers of the summaries to report, in the order of their tables.
    TracedTransitionAccumulator(const std::vector<std::uint32_t>& summaries, Metric& metric);
    ~TracedTransitionAccumulator() override;

    int initialize(Metric& metric, const SystemMetadata& metadata) override;
    int finalize(Metric& metric) override;
    int processMessage(Metric& metric) override;

private:
    struct Impl;

    std::unique_ptr<Impl> m_impl;
};

} // namespace pwr
