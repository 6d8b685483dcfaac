#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "common/metrics/accumulator.h"
#include "common/metrics/metric.h"

namespace pwr {

/// What a metric type accepts and reports. A new type is one row in the table and one accumulator.
struct MetricTypeRules {
    Metric::MetricType type;
    /// The keys of its tables; the position is the number of the summary.
    std::span<const char* const> selectors;
    bool isSampled;   // periodic: samples of one timestamp form a point
    bool isResidency; // values are ticks in the state that the descriptor names
    bool takesFiniteSet;
    const char* sampleCountTitle;
    std::shared_ptr<Accumulator> (*makeAccumulator)(const std::vector<std::uint32_t>& summaries,
                                                    Metric& metric);
};

/// Null for a number that is no type.
const MetricTypeRules* findMetricTypeRules(Metric::MetricType type);

} // namespace pwr
