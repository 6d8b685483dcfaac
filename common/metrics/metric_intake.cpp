#include "common/metrics/metric_intake.h"

#include <algorithm>

#include "common/metadata/system_metadata.h"
#include "common/metrics/accumulator.h"
#include "common/metrics/metric_types.h"
#include "common/model/data_descriptor.h"
#include "common/model/entity_handle.h"
#include "common/plugin/logger.h"

// The path of a sample: everything is checked before anything changes. No text is fetched unless it is printed.
namespace pwr {

namespace {

unsigned long long number(std::uint64_t value) {
    return value;
}

const char* nameOf(const DataElement& element) {
    return element.getEntity()->getName().c_str();
}

const char* descriptorNameOf(const DataElement& element) {
    return element.getDescriptor() != nullptr ? element.getDescriptor()->getName().c_str() : "";
}

/// A sampling point may lie before the entity's last one: nothing has passed then.
std::uint64_t ticksBetween(std::uint64_t earlier, std::uint64_t later) {
    return later > earlier ? later - earlier : 0;
}

} // namespace

/// Where an accepted sample belongs and what has passed since the one before it.
struct MetricIntake::Admission {
    RowTable::Row* row = nullptr; // null: the combination's first sample
    std::uint32_t number = RowTable::NONE;
    std::uint64_t elapsed = 0;
};

void MetricIntake::setRules(const MetricTypeRules* rules) {
    m_rules = rules;
    m_isOpen = rules != nullptr;
    m_isSampled = m_isOpen && rules->isSampled;
    m_isResidency = m_isOpen && rules->isResidency;
    if (m_isResidency) {
        m_rows.keepEntityTimes();
    }
}

inline bool MetricIntake::hasNeeded_i(std::uint64_t timestamp, const DataElement& element) const {
    if (m_isOpen && timestamp != 0 && element.m_entity != nullptr && element.m_value.has_value() &&
        (!m_isResidency ||
         (element.m_descriptor != nullptr && element.m_value->getType() == DataType::UINT))) {
        return true;
    }
    warnMissing_i(timestamp, element);
    return false;
}

/// Says what the check above missed first.
void MetricIntake::warnMissing_i(std::uint64_t timestamp, const DataElement& element) const {
    const char* name = m_name.c_str();
    if (m_rules == nullptr) {
        logWarning("WARNING: %s: Unrecognized metric type\n", name);
    } else if (!m_isOpen) {
        logWarning("WARNING: %s: Data provided after the metric was finalized. Data discarded.\n", name);
    } else if (timestamp == 0) {
        logWarning("WARNING: %s: Please provide a valid non-zero timestamp.\n", name);
    } else if (element.m_entity == nullptr) {
        logWarning("WARNING: %s: Please provide an entity in the DataElement object.\n", name);
    } else if (!element.m_value) {
        logWarning("WARNING: %s: Please set the value aka measurement in the DataElement object.\n", name);
    } else if (element.m_descriptor == nullptr) {
        logWarning("WARNING: %s: Descriptor is required for MetricType::SampledResidency type. Please "
                   "provide one.\n",
                   name);
    } else {
        logWarning(
            "WARNING: %s: MetricType::SampledResidency type requires values to be given in clock ticks as "
            "pw_u64_t data type.\n",
            name);
    }
}

void MetricIntake::warnNotIncreasing_i(std::uint64_t timestamp, const DataElement& element,
                                       std::uint64_t previous) const {
    logWarning(
        "WARNING: %s: Timestamps must be monotonically increasing. Previous=%llu, current=%llu for %s/%s. "
        "Data discarded.\n",
        m_name.c_str(), number(previous), number(timestamp), nameOf(element), descriptorNameOf(element));
}

void MetricIntake::warnTooLong_i(const DataElement& element, std::uint64_t duration,
                                 std::uint64_t elapsed) const {
    logWarning(
        "WARNING: %s: Duration cannot be more than the elapsed time since last sampling/transition point. "
        "duration=%llu, elapsed time=%llu for %s+%s. Data discarded.\n",
        m_name.c_str(), number(duration), number(elapsed), nameOf(element), descriptorNameOf(element));
}

/// Guesses that samples come in the order of the previous point, before it asks the index. A wrong guess costs a
/// line of memory, so in an order without a pattern it is made ever more rarely.
inline std::uint32_t MetricIntake::findRow_i(const DataElement& element) {
    constexpr std::uint32_t LONGEST_PAUSE = 255;
    std::uint32_t row = RowTable::NONE;
    if (m_guessPause != 0) {
        --m_guessPause;
    } else if (m_lastRow < m_rows.size()) {
        const std::uint32_t guess = m_rows[m_lastRow].next;
        if (guess < m_rows.size() && m_rows.isRow(guess, element.m_entity, element.m_descriptor)) {
            m_guessPauseLength = 0;
            m_lastRow = guess;
            return guess;
        }
        m_guessPauseLength = std::min(2 * m_guessPauseLength + 1, LONGEST_PAUSE);
        m_guessPause = m_guessPauseLength;
    }
    row = m_rows.find(element.m_entity, element.m_descriptor);
    if (row != RowTable::NONE) {
        m_rows[m_lastRow].next = row;
        m_lastRow = row;
    }
    return row;
}

inline bool MetricIntake::admit_i(std::uint64_t timestamp, const DataElement& element, std::uint64_t duration,
                                  Admission& admission) {
    admission.number = element.m_container == m_id ? element.m_row : findRow_i(element);
    const bool isFirst = admission.number == RowTable::NONE;
    if (!isFirst) {
        admission.row = &m_rows[admission.number];
    }
    const std::uint64_t previous = isFirst ? m_metadata.startTSC : admission.row->lastTimestamp;
    if (timestamp < previous || (timestamp == previous && !isFirst)) {
        warnNotIncreasing_i(timestamp, element, previous);
        return false;
    }
    admission.elapsed = timestamp - previous;
    if (duration != Metric::NO_DURATION && duration > admission.elapsed) {
        warnTooLong_i(element, duration, admission.elapsed);
        return false;
    }
    return true;
}

/// Keeps a given duration within the limit. The check at the door compares with the combination's previous sample
/// already; only the limit of a residency, the entity's last sampling point, can be closer.
std::uint64_t MetricIntake::clampDuration_i(const DataElement& element, std::uint64_t duration,
                                            std::uint64_t limit) const {
    if (duration <= limit) {
        return duration;
    }
    const char* name = m_name.c_str();
    const char* entity = nameOf(element);
    if (m_isResidency) {
        logWarning(
            "WARNING: %s: Duration provided for MetricType::SampledResidency is greater than the time "
            "elapsed "
            "since last sampling point for entity=%s. Resetting duration to be the time since the last "
            "sampling point for %s.\n",
            name, entity, entity);
    } else if (m_isSampled) {
        logWarning(
            "WARNING: %s: Duration is greater than the time elapsed since last sampling point for %s %s. "
            "Resetting duration to be the time since the last sampling point.\n",
            name, entity, descriptorNameOf(element));
    } else {
        logWarning(
            "WARNING: %s: Duration is greater than the time elapsed since last transition point for %s %s. "
            "Resetting duration to be the time since the last transition point.\n",
            name, entity, descriptorNameOf(element));
    }
    return limit;
}

inline std::uint64_t MetricIntake::decideDuration_i(std::uint64_t timestamp, const DataElement& element,
                                                    std::uint64_t duration, const Admission& admission) {
    std::uint64_t limit = admission.elapsed;
    if (m_isResidency) {
        limit = ticksBetween(m_rows.timesOf(admission.row->entityNumber).lastPoint, timestamp);
    }
    if (duration == 0) {
        return limit;
    }
    if (duration == Metric::NO_DURATION) {
        // A trace knows when things happened, so there the elapsed time is right; a sample may lack a duration.
        return m_isSampled ? 0 : limit;
    }
    return clampDuration_i(element, duration, limit);
}

void MetricIntake::warnTooManyTicks_i(std::uint64_t timestamp, const DataElement& element,
                                      std::uint64_t duration) const {
    std::uint64_t ticks = 0;
    element.m_value->toUInt(ticks);
    if (ticks > duration) {
        logWarning("WARNING: %s: Clock ticks spent by %s in state %s=%llu is greater than the duration=%llu "
                   "since the "
                   "last sampling point. Note this sample at timestamp=%llu will be discarded.\n",
                   m_name.c_str(), nameOf(element), descriptorNameOf(element), number(ticks),
                   number(duration), number(timestamp));
    }
}

const DataDescriptor* MetricIntake::reportingDescriptor_i() {
    if (m_reportingDescriptor == nullptr) {
        m_reportingDescriptor = DataDescriptorBuilder(m_name).build();
        m_pending.setReportingDescriptor(m_reportingDescriptor);
    }
    return m_reportingDescriptor;
}

void MetricIntake::enterRow_i(const DataElement& element, Admission& admission) {
    admission.number = m_rows.add(element.m_entity, element.m_descriptor);
    admission.row = &m_rows[admission.number];
    m_rows[m_lastRow].next = admission.number;
    m_lastRow = admission.number;
    if (m_isResidency) {
        m_rows.timesOf(admission.row->entityNumber).lastPoint = m_metadata.startTSC;
    }
}

/// A sample of another timestamp than the last one's completes the sampling point before it.
void MetricIntake::beginPoint_i(std::uint64_t timestamp) {
    if (m_isEmpty) {
        m_isEmpty = false;
        m_point.m_previousTimestamp = m_metadata.startTSC;
    } else if (m_isSampled) {
        pushToStream_i();
    }
    m_point.m_timestamp = timestamp;
}

int MetricIntake::take(std::uint64_t timestamp, DataElement& element, std::uint64_t duration) {
    Admission admission;
    if (!hasNeeded_i(timestamp, element) || !admit_i(timestamp, element, duration, admission)) {
        return 1;
    }
    if (admission.row == nullptr) {
        enterRow_i(element, admission);
    }
    if (timestamp != m_point.m_timestamp) {
        beginPoint_i(timestamp);
    }
    // Behind the push, which sets the entities' last sampling points.
    const std::uint64_t decided = decideDuration_i(timestamp, element, duration, admission);
    if (m_isResidency) {
        warnTooManyTicks_i(timestamp, element, decided);
    }
    element.m_duration = decided;
    element.m_reportingDescriptor =
        element.m_descriptor != nullptr ? element.m_descriptor : reportingDescriptor_i();
    element.m_container = m_id;
    element.m_row = admission.number;
    m_pending.add(element, admission.number, decided, admission.elapsed);
    admission.row->lastTimestamp = timestamp;
    if (!m_isSampled) {
        pushToStream_i();
    }
    return 0;
}

void MetricIntake::end() {
    if (m_isSampled) {
        pushToStream_i();
    }
    m_isOpen = false;
    m_hasEnded = true;
}

bool MetricIntake::agreeDurations_i() {
    ++m_checks;
    bool agree = true;
    for (const PendingSample& sample : m_pending.samples()) {
        const RowTable::Row& row = m_rows[sample.row];
        RowTable::EntityTimes& times = m_rows.timesOf(row.entityNumber);
        if (times.check != m_checks) {
            times = {m_point.m_timestamp, sample.duration, m_checks};
        } else if (times.duration != sample.duration) {
            agree = false;
            const char* entity = row.entity->getName().c_str();
            logWarning(
                "WARNING: %s: valid duration since the last sampling point for %s = %llu, but that provided "
                "for %s in state %s= %llu. All data provided for the previous sampling point will be "
                "discarded.\n",
                m_name.c_str(), entity, number(times.duration), entity, row.descriptor->getName().c_str(),
                number(sample.duration));
        }
    }
    return agree;
}

void MetricIntake::initializeAccumulators_i() {
    m_initializationPending = false;
    for (const std::shared_ptr<Accumulator>& accumulator : accumulators) {
        if (accumulator->initialize(m_owner, m_metadata) != 0) {
            logWarning("WARNING: Metric container %s couldn't initialize an accumulator!\n", m_name.c_str());
        }
    }
}

void MetricIntake::pushToStream_i() {
    if (!m_isResidency || agreeDurations_i()) {
        if (m_initializationPending) {
            initializeAccumulators_i();
        }
        for (const std::shared_ptr<Accumulator>& accumulator : accumulators) {
            if (accumulator->processMessage(m_owner) != 0) {
                logWarning("WARNING: Metric container %s reports an accumulator processMessage error!\n",
                           m_name.c_str());
            }
        }
        m_point.m_previousTimestamp = m_point.m_timestamp;
    }
    m_pending.clear();
}

} // namespace pwr
