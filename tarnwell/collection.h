#pragma once

#include "tarnwell/drain_schedule.h"
#include "tarnwell/foreign_clocks.h"
#include "tarnwell/message_reader.h"
#include "tarnwell/read_worker.h"
#include "tarnwell/settings.h"

#include <array>
#include <cstdint>
#include <map>
#include <string>
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
/// handed to the metric plug-ins, so that a fault of theirs costs no data. Ends when the time is over, at Ctrl-C, when
/// the command ends, or at the end of a recorded machine, whichever comes first.
///
/// Two threads of its own read: one the counters, at the ticks, and one drains what sources recorded by themselves. Each
/// has one of two rounds to fill while the host uses the other, so that neither the file nor the metrics delay a read.
/// What sources record by themselves is fetched and used many times a second, however long the interval is: their memory
/// and that of the host stay small.
class Collection {
public:
    Collection(const Settings& settings, const CollectionParts& parts);

    /// Makes ready to read. 1 when that is not possible, with the reason.
    int start(std::string& reason);

    /// Lets time pass before the begin. What sources record by themselves meanwhile is nobody's, and must not fill their
    /// memory. False when the user interrupts.
    bool waitUntil(std::uint64_t begin);

    /// Carries out what is to be done before a collection begins; what it reads counts with the first round.
    void initialize();
    /// Notes the begin in the system record, which the metric containers read with the first sample.
    void begin();

    CollectionOutcome run(UserCommand& command, ProgressLine& progress);

private:
    struct Round {
        ReadingBatch read;
        ReadingBatch drained;
    };

    std::uint64_t plannedStop_i() const;
    void poll_i(std::uint64_t stop);
    bool await_i(std::uint64_t tick);
    bool awaitOrder_i(std::uint64_t tick, Round& round);
    void orderDrain_i(std::uint64_t at, Round& round);
    void order_i(const char* trigger, std::uint64_t at, Round& round);
    bool collect_i(Round& round);
    void readNow_i(const char* trigger, Round& round);
    void use_i(Round& round);
    void takeOver_i(ReadingBatch& batch, std::uint64_t from);
    void convertTime_i(CollectionData& reading);
    void noteMoment_i();
    void end_i();
    void finalize_i();
    void cancel_i();
    std::uint64_t wallClock_i() const;
    double millisecondsOf_i(std::uint64_t ticks) const;

    const Settings& m_settings;
    CollectionParts m_parts;
    UserCommand* m_command = nullptr;
    ProgressLine* m_progress = nullptr;
    CollectionOutcome m_outcome;
    double m_plannedSeconds = 0; ///< 0: open end
    std::uint64_t m_lastRead = 0;
    std::uint64_t m_collectedUntil = 0; ///< when the last round was complete
    std::uint64_t m_nextMoment = 0;
    Round m_initial; ///< read before the begin
    std::array<Round, 2> m_rounds;
    Round m_piece; ///< drained while its round is under way
    DrainSchedule m_drainSchedule;
    std::vector<const CollectionData*> m_order;     ///< of a round, by time
    std::map<pw_u8_t, std::string> m_foreignStamps; ///< messages that another clock stamps: its UUID
    ForeignClocks m_foreignClocks;
    bool m_drains;
    ReadWorker m_poll;
    ReadWorker m_trace;
};

} // namespace tarnwell
