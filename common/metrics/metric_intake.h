#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "common/metrics/accumulator.h"
#include "common/metrics/data_point.h"
#include "common/metrics/metric.h"
#include "common/metrics/pending_samples.h"
#include "common/metrics/row_table.h"

namespace pwr {

struct MetricTypeRules;

/// The path of a sample into its container: checks, grouping into sampling points, durations, and the hand-over of
/// completed points to the accumulators. Not part of the exported class, so that the compiler may make one piece
/// of it.
class MetricIntake {
public:
    MetricIntake(Metric& owner, const std::string& name, const SystemMetadata& metadata, std::uint32_t id)
        : m_owner(owner), m_name(name), m_metadata(metadata), m_id(id) {}
    MetricIntake(const MetricIntake&) = delete;
    MetricIntake& operator=(const MetricIntake&) = delete;

    /// Null: no valid type, and nothing is accepted.
    void setRules(const MetricTypeRules* rules);
    /// What Metric::setData promises.
    int take(std::uint64_t timestamp, DataElement& element, std::uint64_t duration);
    /// Hands on the sampling point that is still open; nothing is accepted afterwards.
    void end();

    [[nodiscard]] bool isEmpty() const { return m_isEmpty; }
    [[nodiscard]] bool hasEnded() const { return m_hasEnded; }
    [[nodiscard]] const RowTable& rows() const { return m_rows; }
    [[nodiscard]] const PendingSamples& pending() const { return m_pending; }
    [[nodiscard]] const DataPoint& point() const { return m_point; }
    [[nodiscard]] std::uint64_t latestTimestamp() const { return m_point.m_timestamp; }

    std::vector<std::shared_ptr<Accumulator>> accumulators;

private:
    struct Admission;

    bool hasNeeded_i(std::uint64_t timestamp, const DataElement& element) const;
    bool admit_i(std::uint64_t timestamp, const DataElement& element, std::uint64_t duration,
                 Admission& admission);
    std::uint32_t findRow_i(const DataElement& element);
    void warnMissing_i(std::uint64_t timestamp, const DataElement& element) const;
    void warnNotIncreasing_i(std::uint64_t timestamp, const DataElement& element,
                             std::uint64_t previous) const;
    void warnTooLong_i(const DataElement& element, std::uint64_t duration, std::uint64_t elapsed) const;
    std::uint64_t clampDuration_i(const DataElement& element, std::uint64_t duration,
                                  std::uint64_t limit) const;
    std::uint64_t decideDuration_i(std::uint64_t timestamp, const DataElement& element,
                                   std::uint64_t duration, const Admission& admission);
    void warnTooManyTicks_i(std::uint64_t timestamp, const DataElement& element,
                            std::uint64_t duration) const;
    void enterRow_i(const DataElement& element, Admission& admission);
    void beginPoint_i(std::uint64_t timestamp);
    bool agreeDurations_i();
    void initializeAccumulators_i();
    void pushToStream_i();
    const DataDescriptor* reportingDescriptor_i();

    Metric& m_owner;
    const std::string& m_name;
    const SystemMetadata& m_metadata;
    const MetricTypeRules* m_rules = nullptr;
    bool m_isSampled = false;
    bool m_isResidency = false;
    bool m_isOpen = false; // accepts samples
    bool m_hasEnded = false;
    bool m_isEmpty = true;
    bool m_initializationPending = true;
    std::uint32_t m_id;
    std::uint32_t m_lastRow = 0;
    std::uint32_t m_guessPause = 0;                        // samples to go without guessing
    std::uint32_t m_guessPauseLength = 0;                  // grows while guesses fail
    std::uint64_t m_checks = 0;                            // sampling points whose durations were compared
    const DataDescriptor* m_reportingDescriptor = nullptr; // of elements without one; made when first needed
    RowTable m_rows;
    PendingSamples m_pending{m_rows};
    DataPoint m_point{m_pending};
};

} // namespace pwr
