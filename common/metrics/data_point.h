#pragma once

#include <cstdint>
#include <span>

#include "common/export.h"
#include "common/metrics/data_element.h"

namespace pwr {

class PendingSamples;

/// A sampling point: the samples of one container that share a timestamp.
/// The elements are made when they are first asked for, and hold until the container takes its next sample.
/// Owns:     nothing; a view of its container.
class KRCOMMON_API DataPoint {
public:
    /// The samples in the order of their arrival.
    [[nodiscard]] std::span<const DataElement> getElements() const;
    /// Ticks of the collection clock.
    [[nodiscard]] std::uint64_t getTimestamp() const noexcept { return m_timestamp; }
    /// The timestamp of the sampling point that was handed on before, the collection's begin for the first.
    [[nodiscard]] std::uint64_t getPreviousTimestamp() const noexcept { return m_previousTimestamp; }

private:
    friend class MetricIntake;

    explicit DataPoint(PendingSamples& samples) : m_samples(&samples) {}

    PendingSamples* m_samples;
    std::uint64_t m_timestamp = 0;
    std::uint64_t m_previousTimestamp = 0;
};

} // namespace pwr
