#include "tarnwell/collection.h"

#include "common/metadata/system_metadata.h"
#include "common/platform/interrupt.h"
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

namespace tarnwell {
namespace {

constexpr double kMillisecondsPerSecond = 1000.0;

} // namespace

Collection::Collection(const Settings& settings, const CollectionParts& parts)
    : m_settings(settings), m_parts(parts) {}

void Collection::initialize() {
    m_initial = m_parts.messages.read("INIT");
}

void Collection::begin() {
    pwr::SystemMetadata& system = m_parts.system;
    system.startTimeval = m_parts.clock.isRecorded() ? 0 : wallClockMicroseconds();
    system.startTSC = m_parts.clock.now();
    m_lastRead = system.startTSC;
}

CollectionOutcome Collection::run(UserCommand& command, ProgressLine& progress) {
    const double ticksPerSecond = m_parts.clock.ticksPerSecond();
    const auto interval = static_cast<std::uint64_t>(
        std::llround(m_settings.intervalMs / kMillisecondsPerSecond * ticksPerSecond));
    const std::uint64_t begin = m_parts.system.startTSC;
    const std::uint64_t stop = plannedStop_i();
    const double total = stop == UINT64_MAX ? 0 : static_cast<double>(stop - begin) / ticksPerSecond;

    const auto& first = read_i("BEGIN");
    const std::vector<pwr::TWClockSync> moment = m_parts.moments.take();
    m_parts.system.clockSyncs.assign(moment.begin(), moment.end());
    m_parts.saving.begin(m_parts.system, moment);
    use_i(m_initial);
    use_i(first);
    PollSchedule schedule(begin, interval, stop);
    std::uint64_t deadline = schedule.nextDeadline(m_parts.clock.now());
    m_parts.saving.settle(deadline);
    command.setBegin(begin, ticksPerSecond);
    const auto mustStop = [&] {
        m_outcome.wasInterrupted = pwr::platform::interruptCount() > 0;
        return m_outcome.wasInterrupted || command.isOver();
    };
    while (!mustStop()) {
        const std::uint64_t now = m_parts.clock.now();
        command.look(now);
        if (now < deadline) {
            m_parts.clock.waitUntil(std::min(deadline, command.dueTick()), command.process());
        } else if (schedule.isStop(deadline)) {
            break;
        } else {
            use_i(read_i("POLL"));
            ++m_outcome.polls;
            deadline = schedule.nextDeadline(m_parts.clock.now());
            m_parts.saving.settle(deadline);
        }
        progress.show(static_cast<double>(m_parts.clock.now() - begin) / ticksPerSecond, total,
                      m_outcome.polls, schedule.missed());
    }
    progress.clear();
    use_i(read_i("END"));
    end_i();
    finalize_i();
    m_outcome.missedTicks = schedule.missed();
    m_outcome.seconds = static_cast<double>(m_parts.system.stopTSC - begin) / ticksPerSecond;
    m_outcome.meanIntervalMs =
        millisecondsOf_i(m_lastRead - begin) / static_cast<double>(m_outcome.polls + 1);
    return m_outcome;
}

std::uint64_t Collection::plannedStop_i() const {
    if (!m_settings.seconds) {
        const std::uint64_t atLeast = m_parts.system.startTSC + 1;
        return std::max(m_parts.clock.naturalStop(), atLeast);
    }
    const double ticks = *m_settings.seconds * m_parts.clock.ticksPerSecond();
    return m_parts.system.startTSC + static_cast<std::uint64_t>(std::llround(ticks));
}

const std::vector<const CollectionData*>& Collection::read_i(const char* trigger) {
    const std::uint64_t at = m_parts.clock.now();
    if (at > m_lastRead) {
        m_outcome.longestIntervalMs =
            std::max(m_outcome.longestIntervalMs, millisecondsOf_i(at - m_lastRead));
    }
    m_lastRead = at;
    m_parts.messages.read(trigger);
    // Up to the end of the reads, so that nothing of a later round is older than what this one read.
    return m_parts.messages.drain(m_parts.system.startTSC, m_parts.clock.now());
}

void Collection::use_i(const std::vector<const CollectionData*>& round) {
    m_parts.saving.save(round);
    for (const CollectionData* reading : round) {
        m_parts.computation.process(*reading);
    }
}

void Collection::end_i() {
    pwr::SystemMetadata& system = m_parts.system;
    system.stopTSC = std::max(m_parts.clock.now(), m_lastRead);
    system.stopTimeval = m_parts.clock.isRecorded() ? 0 : wallClockMicroseconds();
    system.producedSamples = m_parts.messages.producedValues();
}

/// What is read after the end belongs to the collection all the same.
void Collection::finalize_i() {
    use_i(m_parts.messages.read("FINI"));
    m_parts.system.producedSamples = m_parts.messages.producedValues();
}

double Collection::millisecondsOf_i(std::uint64_t ticks) const {
    return static_cast<double>(ticks) / m_parts.clock.ticksPerSecond() * kMillisecondsPerSecond;
}

} // namespace tarnwell
