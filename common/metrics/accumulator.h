#pragma once

#include "common/export.h"

namespace pwr {

class Metric;
class SystemMetadata;

/// Consumes the sampling points of one metric container and reports on them at the end.
/// Threads:  not synchronised; used by the thread that feeds the container.
/// Order:    initialize() once, processMessage() for each sampling point, finalize() once. When every point was
///           discarded, finalize() comes without the others.
/// Failure:  1 and a warning; the container goes on with its other accumulators.
class KRCOMMON_API Accumulator {
public:
    Accumulator();
    Accumulator(const Accumulator&) = delete;
    Accumulator& operator=(const Accumulator&) = delete;
    virtual ~Accumulator();

    virtual int initialize(Metric& metric, const SystemMetadata& metadata) = 0;
    /// Pushes the tables into the stream that the container was made with.
    virtual int finalize(Metric& metric) = 0;
    /// Takes in metric.getData().
    virtual int processMessage(Metric& metric) = 0;
};

} // namespace pwr
