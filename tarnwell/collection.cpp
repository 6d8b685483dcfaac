#include "tarnwell/collection.h"

#include "common/metadata/system_metadata.h"
#include "common/platform/interrupt.h"
#include "common/plugin/collector_plugin.h"
#include "common/plugin/logger.h"
#include "common/tw_clock.h"
#include "tarnwell/clock_moments.h"
#include "tarnwell/collection_clock.h"
#include "tarnwell/computation.h"
#include "tarnwell/message_set.h"
#include "tarnwell/poll_schedule.h"
#include "tarnwell/progress_line.h"
#include "tarnwell/saving.h"
#include "tarnwell/user_command.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace tarnwell {
namespace {

constexpr double kMillisecondsPerSecond = 1000.0;
// Clocks drift apart by some 10 ppm, so that in between a straight line is good to less than a millisecond.
constexpr double kSecondsBetweenMoments = 60.0;
// A buffer of 8 MB holds 600 ms of 200,000 of the largest usual events a second.
constexpr double kSecondsBetweenDrains = 0.05;
constexpr std::uint64_t kAtOnce = 0;

} // namespace

Collection::Collection(const Settings& settings, const CollectionParts& parts)
    : m_settings(settings), m_parts(parts),
      // Told time stands still between the ticks.
      m_drainSchedule(parts.clock.isRecorded()
                          ? UINT64_MAX
                          : static_cast<std::uint64_t>(kSecondsBetweenDrains * parts.clock.ticksPerSecond())),
      m_drains(parts.messages.reader().hasRecording()), m_poll(parts.messages.reader(), parts.clock),
      m_trace(parts.messages.reader(), parts.clock) {
    for (const OpenMessage& message : parts.messages.reader().messages()) {
        const pwr::TWClockSource* const clock = message.collector->getClockSource();
        if (clock != nullptr && clock->getUUID() != parts.clock.source().getUUID()) {
            m_foreignStamps[message.id().message] = clock->getUUID();
        }
    }
}

int Collection::start(std::string& reason) {
    return m_poll.start(m_settings.pollProcessor, reason) == 0 &&
                   (!m_drains || m_trace.start(std::nullopt, reason) == 0)
               ? 0
               : 1;
}

bool Collection::waitUntil(std::uint64_t begin) {
    ReadingBatch& nobodys = m_piece.drained;
    while (m_parts.clock.now() < begin && pwr::platform::interruptCount() == 0) {
        const std::uint64_t now = m_parts.clock.now();
        if (m_drains) {
            m_trace.drain(kAtOnce, now, nobodys);
            m_trace.finish();
            nobodys.clear();
        }
        m_parts.clock.waitUntil(m_drains ? m_drainSchedule.advance(now, begin) : begin, nullptr);
    }
    return pwr::platform::interruptCount() == 0;
}

void Collection::initialize() {
    m_poll.read("INIT", kAtOnce, m_initial.read);
    m_poll.finish();
}

void Collection::begin() {
    pwr::SystemMetadata& system = m_parts.system;
    system.startTimeval = wallClock_i();
    system.startTSC = m_parts.clock.now();
    m_lastRead = system.startTSC;
}

CollectionOutcome Collection::run(UserCommand& command, ProgressLine& progress) {
    m_command = &command;
    m_progress = &progress;
    const double ticksPerSecond = m_parts.clock.ticksPerSecond();
    const std::uint64_t begin = m_parts.system.startTSC;
    const std::uint64_t stop = plannedStop_i();
    m_plannedSeconds = stop == UINT64_MAX ? 0 : static_cast<double>(stop - begin) / ticksPerSecond;

    // Before the first reads, whose times may have to be converted by it.
    const std::vector<pwr::TWClockSync> moment = m_parts.moments.take();
    m_foreignClocks.addMoment(moment);
    readNow_i("BEGIN", m_rounds[0]);
    m_parts.system.clockSyncs.assign(moment.begin(), moment.end());
    m_parts.saving.begin(m_parts.system, moment);
    m_nextMoment = begin + static_cast<std::uint64_t>(kSecondsBetweenMoments * ticksPerSecond);
    use_i(m_initial);
    command.setBegin(begin, ticksPerSecond);
    poll_i(stop);
    progress.clear();
    readNow_i("END", m_rounds[0]);
    use_i(m_rounds[0]);
    end_i();
    finalize_i();
    m_outcome.seconds = static_cast<double>(m_parts.system.stopTSC - begin) / ticksPerSecond;
    m_outcome.meanIntervalMs =
        millisecondsOf_i(m_lastRead - begin) / static_cast<double>(m_outcome.polls + 1);
    return m_outcome;
}

/// From the first round on, which was read but not used yet, to the stop.
void Collection::poll_i(std::uint64_t stop) {
    const auto interval = static_cast<std::uint64_t>(
        std::llround(m_settings.intervalMs / kMillisecondsPerSecond * m_parts.clock.ticksPerSecond()));
    PollSchedule schedule(m_parts.system.startTSC, interval, stop);
    Round* done = m_rounds.data();
    Round* next = &m_rounds[1];
    bool goesOn = true;
    while (goesOn) {
        const std::uint64_t deadline = schedule.nextDeadline(m_parts.clock.now());
        const bool isPoll = !schedule.isStop(deadline);
        m_outcome.missedTicks = schedule.missed();
        // Told time moves by waiting for it, so that comes first; real time passes while the host works.
        const bool isTold = m_parts.clock.isRecorded();
        if (isTold) {
            goesOn = await_i(deadline);
        }
        if (isPoll && goesOn) {
            order_i("POLL", deadline, *next);
        }
        use_i(*done);
        m_parts.saving.settle(deadline);
        noteMoment_i();
        goesOn = goesOn && (isTold || awaitOrder_i(deadline, *next)) && isPoll;
        if (!goesOn) {
            cancel_i();
        }
        const bool isRead = collect_i(*next);
        m_outcome.polls += isRead ? 1 : 0;
        goesOn = goesOn && isRead; // an order that nobody cancelled fails with its worker, which has said why
        std::swap(done, next);
    }
    use_i(*done);
}

/// False when the collection is to end before the tick.
bool Collection::await_i(std::uint64_t tick) {
    for (;;) {
        m_outcome.wasInterrupted = pwr::platform::interruptCount() > 0;
        if (m_outcome.wasInterrupted || m_command->isOver()) {
            return false;
        }
        const std::uint64_t now = m_parts.clock.now();
        m_command->look(now);
        m_progress->show(static_cast<double>(now - m_parts.system.startTSC) / m_parts.clock.ticksPerSecond(),
                         m_plannedSeconds, m_outcome.polls, m_outcome.missedTicks);
        if (now >= tick) {
            return true;
        }
        m_parts.clock.waitUntil(std::min(tick, m_command->dueTick()), m_command->process());
    }
}

std::uint64_t Collection::plannedStop_i() const {
    if (!m_settings.seconds) {
        const std::uint64_t atLeast = m_parts.system.startTSC + 1;
        return std::max(m_parts.clock.naturalStop(), atLeast);
    }
    const double ticks = *m_settings.seconds * m_parts.clock.ticksPerSecond();
    return m_parts.system.startTSC + static_cast<std::uint64_t>(std::llround(ticks));
}

void Collection::order_i(const char* trigger, std::uint64_t at, Round& round) {
    if (m_drains) {
        m_drainSchedule.begin(m_parts.clock.now());
        orderDrain_i(at, round);
    }
    m_poll.read(trigger, at, round.read);
}

/// At the tick as well, or before it, however long the host is busy: the sources' memory is limited.
void Collection::orderDrain_i(std::uint64_t at, Round& round) {
    const std::uint64_t now = m_parts.clock.now();
    const std::uint64_t next = m_drainSchedule.advance(now, at);
    m_trace.drain(next, std::max(next, now), round.drained);
}

/// Waits for the tick of a round that was ordered, and uses what was drained for it meanwhile: all of that is older than
/// what is read at the tick. False when the collection is to end before.
bool Collection::awaitOrder_i(std::uint64_t tick, Round& round) {
    while (m_drains && m_drainSchedule.next() < tick) {
        if (!await_i(m_drainSchedule.next())) {
            return false;
        }
        m_trace.finish();
        std::swap(round.drained, m_piece.drained);
        orderDrain_i(tick, round);
        use_i(m_piece);
        m_parts.saving.settle(m_drainSchedule.next());
    }
    return await_i(tick);
}

/// Waits for what was ordered. False when nothing was read, because of a cancel or without an order.
bool Collection::collect_i(Round& round) {
    const bool isRead = m_poll.finish();
    if (m_drains) {
        m_trace.finish();
    }
    m_collectedUntil = m_parts.clock.now();
    if (m_drains && isRead) {
        // What was recorded while reading belongs in between, and must not come behind a later round.
        m_trace.drain(kAtOnce, m_collectedUntil, round.drained);
        m_trace.finish();
    }
    if (isRead && round.read.begin > m_lastRead) {
        m_outcome.longestIntervalMs =
            std::max(m_outcome.longestIntervalMs, millisecondsOf_i(round.read.begin - m_lastRead));
        m_lastRead = round.read.begin;
    }
    return isRead;
}

void Collection::readNow_i(const char* trigger, Round& round) {
    order_i(trigger, kAtOnce, round);
    collect_i(round);
}

void Collection::cancel_i() {
    m_poll.cancel();
    m_trace.cancel();
}

/// Saves the round, then computes with it, and empties it.
void Collection::use_i(Round& round) {
    m_order.clear();
    takeOver_i(round.read, 0);
    takeOver_i(round.drained, m_parts.system.startTSC);
    const auto isEarlier = [](const CollectionData* left, const CollectionData* right) {
        return left->header().timestamp < right->header().timestamp;
    };
    // The events of one message are in order already.
    if (round.drained.size() > 0 && !std::is_sorted(m_order.begin(), m_order.end(), isEarlier)) {
        std::stable_sort(m_order.begin(), m_order.end(), isEarlier);
    }
    m_parts.saving.save(m_order);
    for (const CollectionData* reading : m_order) {
        m_parts.messages.count(*reading);
        m_parts.computation.process(*reading);
    }
    m_parts.messages.countFailures(round.read.failed);
    m_parts.messages.countFailures(round.drained.failed);
    round.read.clear();
    round.drained.clear();
}

/// What a source recorded before the begin does not belong to the collection.
void Collection::takeOver_i(ReadingBatch& batch, std::uint64_t from) {
    for (CollectionData& reading : batch.records()) {
        convertTime_i(reading);
        if (reading.header().timestamp >= from) {
            m_order.push_back(&reading);
        }
    }
}

/// Everything behind here, the file included, knows one clock.
void Collection::convertTime_i(CollectionData& reading) {
    const auto stamp = m_foreignStamps.find(reading.header().id.message);
    if (stamp != m_foreignStamps.end() &&
        !m_foreignClocks.convert(stamp->second, reading.header().timestamp)) {
        pwr::logWarning(
            "WARNING: message %u is stamped by an unknown clock (%s): its times are not converted!\n",
            static_cast<unsigned>(stamp->first), stamp->second.c_str());
        m_foreignStamps.erase(stamp); // told once
    }
}

void Collection::noteMoment_i() {
    const std::uint64_t now = m_parts.clock.now();
    if (now < m_nextMoment) {
        return;
    }
    const double ticks = kSecondsBetweenMoments * m_parts.clock.ticksPerSecond();
    m_nextMoment = now + static_cast<std::uint64_t>(ticks);
    const std::vector<pwr::TWClockSync> moment = m_parts.moments.take();
    m_foreignClocks.addMoment(moment);
    m_parts.saving.note(now, wallClock_i(), moment);
}

void Collection::end_i() {
    pwr::SystemMetadata& system = m_parts.system;
    // Not later, because what was recorded since is not fetched any more.
    system.stopTSC = std::max(m_collectedUntil, m_lastRead);
    system.stopTimeval = wallClock_i();
    system.producedSamples = m_parts.messages.producedValues();
}

/// What is read after the end belongs to the collection all the same.
void Collection::finalize_i() {
    m_poll.read("FINI", kAtOnce, m_rounds[0].read);
    m_poll.finish();
    use_i(m_rounds[0]);
    m_parts.system.producedSamples = m_parts.messages.producedValues();
}

/// 0 for a recorded machine, whose reports must not differ.
std::uint64_t Collection::wallClock_i() const {
    return m_parts.clock.isRecorded() ? 0 : wallClockMicroseconds();
}

double Collection::millisecondsOf_i(std::uint64_t ticks) const {
    return static_cast<double>(ticks) / m_parts.clock.ticksPerSecond() * kMillisecondsPerSecond;
}

} // namespace tarnwell
