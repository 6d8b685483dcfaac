#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <vector>

#include "common/metrics/metric.h"
#include "common/metrics/sample_count_summarizer.h"
#include "common/plugin/logger.h"

namespace pwr {

/// The summarizer of an accumulator that offers SAMPLE-COUNT, there when that summary is selected.
class SampleCounting {
public:
    SampleCounting(const std::vector<std::uint32_t>& summaries, std::uint32_t number, Metric& metric) {
        if (std::find(summaries.begin(), summaries.end(), number) != summaries.end()) {
            m_summarizer = std::make_unique<SampleCountSummarizer>(metric);
        }
    }

    int initialize(Metric& metric, const SystemMetadata& metadata) {
        return m_summarizer ? m_summarizer->initialize(metric, metadata) : 0;
    }
    /// Comes before the accumulator's own work, which must not be done when this fails.
    int processMessage(Metric& metric) {
        if (m_summarizer && m_summarizer->processMessage(metric) != 0) {
            logWarning("WARNING: Failed to process %s for sample count.\n", metric.getName().c_str());
            return 1;
        }
        return 0;
    }
    int finalize(Metric& metric) { return m_summarizer ? m_summarizer->finalize(metric) : 0; }

private:
    std::unique_ptr<SampleCountSummarizer> m_summarizer;
};

} // namespace pwr
