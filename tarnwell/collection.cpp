#include "tarnwell/collection.h"

#include "common/metadata/system_metadata.h"
#include "common/platform/child_process.h"
#include "common/platform/interrupt.h"
#include "common/tw_clock.h"
#include "tarnwell/collection_clock.h"
#include "tarnwell/message_set.h"
#include "tarnwell/poll_schedule.h"
#include "tarnwell/progress_line.h"

#include <algorithm>
#include <cmath>

namespace tarnwell {
namespace {

constexpr double kMillisecondsPerSecond = 1000.0;
constexpr std::uint64_t kNanosecondsPerMicrosecond = 1000;

std::uint64_t microsecondsSinceEpoch() {
    return pwr::TWNanoClock().getTimestamp() / kNanosecondsPerMicrosecond;
}

} // namespace

Collection::Collection(const Settings& settings, CollectionClock& clock, MessageSet& messages,
                       const std::vector<MetricPlugin*>& metrics, pwr::SystemMetadata& system)
    : m_settings(settings), m_clock(clock), m_messages(messages), m_metrics(metrics), m_system(system) {}

void Collection::begin() {
    m_system.startTimeval = m_clock.isRecorded() ? 0 : microsecondsSinceEpoch();
    m_system.startTSC = m_clock.now();
    m_lastRead = m_system.startTSC;
}

CollectionOutcome Collection::run(pwr::platform::ChildProcess* child, ProgressLine& progress) {
    const double ticksPerSecond = m_clock.ticksPerSecond();
    const auto interval = static_cast<std::uint64_t>(
        std::llround(m_settings.intervalMs / kMillisecondsPerSecond * ticksPerSecond));
    const std::uint64_t begin = m_system.startTSC;
    const std::uint64_t stop = plannedStop_i();
    const double total = stop == UINT64_MAX ? 0 : static_cast<double>(stop - begin) / ticksPerSecond;

    read_i("BEGIN");
    PollSchedule schedule(begin, interval, stop);
    std::uint64_t deadline = schedule.nextDeadline(m_clock.now());
    const auto mustStop = [&] {
        m_outcome.wasInterrupted = pwr::platform::interruptCount() > 0;
        return m_outcome.wasInterrupted || (child != nullptr && child->hasEnded());
    };
    while (!mustStop()) {
        const std::uint64_t now = m_clock.now();
        if (now < deadline) {
            m_clock.waitUntil(deadline, child);
        } else if (schedule.isStop(deadline)) {
            break;
        } else {
            read_i("POLL");
            ++m_outcome.polls;
            deadline = schedule.nextDeadline(m_clock.now());
        }
        progress.show(static_cast<double>(m_clock.now() - begin) / ticksPerSecond, total, m_outcome.polls,
                      schedule.missed());
    }
    progress.clear();
    read_i("END");

    m_system.stopTSC = std::max(m_clock.now(), m_lastRead);
    m_system.stopTimeval = m_clock.isRecorded() ? 0 : microsecondsSinceEpoch();
    m_system.producedSamples = m_messages.producedValues();
    m_outcome.missedTicks = schedule.missed();
    m_outcome.seconds = static_cast<double>(m_system.stopTSC - begin) / ticksPerSecond;
    m_outcome.meanIntervalMs =
        millisecondsOf_i(m_lastRead - begin) / static_cast<double>(m_outcome.polls + 1);
    return m_outcome;
}

std::uint64_t Collection::plannedStop_i() const {
    if (!m_settings.seconds) {
        const std::uint64_t atLeast = m_system.startTSC + 1;
        return std::max(m_clock.naturalStop(), atLeast);
    }
    const double ticks = *m_settings.seconds * m_clock.ticksPerSecond();
    return m_system.startTSC + static_cast<std::uint64_t>(std::llround(ticks));
}

void Collection::read_i(const char* trigger) {
    const std::uint64_t at = m_clock.now();
    if (at > m_lastRead) {
        m_outcome.longestIntervalMs =
            std::max(m_outcome.longestIntervalMs, millisecondsOf_i(at - m_lastRead));
    }
    m_lastRead = at;
    m_messages.execute(trigger, m_metrics);
}

double Collection::millisecondsOf_i(std::uint64_t ticks) const {
    return static_cast<double>(ticks) / m_clock.ticksPerSecond() * kMillisecondsPerSecond;
}

} // namespace tarnwell
