#pragma once

#include "tarnwell/settings.h"

#include <cstdint>
#include <string>
#include <vector>

class MetricPlugin;

namespace pwr {
class SystemMetadata;
namespace platform {
class ChildProcess;
}
} // namespace pwr

namespace tarnwell {

class CollectionClock;
class MessageSet;
class ProgressLine;

/// How one collection went.
struct CollectionOutcome {
    std::uint64_t polls = 0;       ///< reads at ticks of the interval, without the first and the last
    std::uint64_t missedTicks = 0; ///< ticks that passed while earlier reads still ran
    double seconds = 0;            ///< from the begin to the stop
    double meanIntervalMs = 0;     ///< achieved between two reads
    double longestIntervalMs = 0;
    bool wasInterrupted = false;
};

/// Reads at the begin, at every tick of the interval and at the end, and hands each reading to the metric
/// plug-ins. Ends when the time is over, at Ctrl-C, when the command ends, or at the end of a recorded
/// machine, whichever comes first.
class Collection {
public:
    Collection(const Settings& settings, CollectionClock& clock, MessageSet& messages,
               const std::vector<MetricPlugin*>& metrics, pwr::SystemMetadata& system);

    /// Notes the begin in the system record, which the metric containers read with the first sample.
    void begin();

    CollectionOutcome run(pwr::platform::ChildProcess* child, ProgressLine& progress);

private:
    std::uint64_t plannedStop_i() const;
    void read_i(const char* trigger);
    double millisecondsOf_i(std::uint64_t ticks) const;

    const Settings& m_settings;
    CollectionClock& m_clock;
    MessageSet& m_messages;
    const std::vector<MetricPlugin*>& m_metrics;
    pwr::SystemMetadata& m_system;
    CollectionOutcome m_outcome;
    std::uint64_t m_lastRead = 0;
};

} // namespace tarnwell
