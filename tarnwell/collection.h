#pragma once

#include "common/plugin/collection_data.h"
#include "tarnwell/settings.h"

#include <cstdint>
#include <vector>

namespace pwr {
class SystemMetadata;
} // namespace pwr

namespace tarnwell {

class ClockMoments;
class CollectionClock;
class Computation;
class MessageSet;
class ProgressLine;
class Saving;
class UserCommand;

/// How one collection went.
struct CollectionOutcome {
    std::uint64_t polls = 0;       ///< reads at ticks of the interval, without the first and the last
    std::uint64_t missedTicks = 0; ///< ticks that passed while earlier reads still ran
    double seconds = 0;            ///< from the begin to the stop
    double meanIntervalMs = 0;     ///< achieved between two reads
    double longestIntervalMs = 0;
    bool wasInterrupted = false;
};

/// What one collection works on.
struct CollectionParts {
    CollectionClock& clock;
    const ClockMoments& moments;
    MessageSet& messages;
    Saving& saving;
    Computation& computation;
    pwr::SystemMetadata& system;
};

/// Reads at the begin, at every tick of the interval and at the end. Each round of readings is saved first and then
/// handed to the metric plug-ins, so that a fault of theirs costs no data. Ends when the time is over, at Ctrl-C, when the command ends, or at the end of a recorded
/// machine, whichever comes first.
class Collection {
public:
    Collection(const Settings& settings, const CollectionParts& parts);

    /// Carries out what is to be done before a collection begins; what it reads counts with the first round.
    void initialize();
    /// Notes the begin in the system record, which the metric containers read with the first sample.
    void begin();

    CollectionOutcome run(UserCommand& command, ProgressLine& progress);

private:
    std::uint64_t plannedStop_i() const;
    const std::vector<const CollectionData*>& read_i(const char* trigger);
    void use_i(const std::vector<const CollectionData*>& round);
    void finalize_i();
    void end_i();
    double millisecondsOf_i(std::uint64_t ticks) const;

    const Settings& m_settings;
    CollectionParts m_parts;
    CollectionOutcome m_outcome;
    std::uint64_t m_lastRead = 0;
    std::vector<const CollectionData*> m_initial; ///< read before the begin
};

} // namespace tarnwell
