#include "common/metadata/system_metadata.h"
#include "common/metrics/accumulator.h"
#include "common/metrics/metric_fields.h"
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
struct Metric::Admission {
    std::uint32_t row = RowTable::NONE; // NONE: the combination's first sample
    std::uint64_t elapsed = 0;
};

bool Metric::hasNeeded_i(std::uint64_t timestamp, const DataElement& element) const {
    const char* name = m_fields->name.c_str();
    if (m_fields->rules == nullptr) {
        logWarning("WARNING: %s: Unrecognized metric type\n", name);
    } else if (m_fields->isFinalized) {
        logWarning("WARNING: %s: Data provided after the metric was finalized. Data discarded.\n", name);
    } else if (timestamp == 0) {
        logWarning("WARNING: %s: Please provide a valid non-zero timestamp.\n", name);
    } else if (element.m_entity == nullptr) {
        logWarning("WARNING: %s: Please provide an entity in the DataElement object.\n", name);
    } else if (!element.m_value) {
        logWarning("WARNING: %s: Please set the value aka measurement in the DataElement object.\n", name);
    } else if (!m_fields->rules->isResidency) {
        return true;
    } else if (element.m_descriptor == nullptr) {
        logWarning("WARNING: %s: Descriptor is required for MetricType::SampledResidency type. Please "
                   "provide one.\n",
                   name);
    } else if (element.m_value->getType() != DataType::UINT) {
        logWarning(
            "WARNING: %s: MetricType::SampledResidency type requires values to be given in clock ticks as "
            "pw_u64_t data type.\n",
            name);
    } else {
        return true;
    }
    return false;
}

void Metric::warnNotIncreasing_i(std::uint64_t timestamp, const DataElement& element,
                                 std::uint64_t previous) const {
    logWarning(
        "WARNING: %s: Timestamps must be monotonically increasing. Previous=%llu, current=%llu for %s/%s. "
        "Data discarded.\n",
        m_fields->name.c_str(), number(previous), number(timestamp), nameOf(element),
        descriptorNameOf(element));
}

void Metric::warnTooLong_i(const DataElement& element, std::uint64_t duration, std::uint64_t elapsed) const {
    logWarning(
        "WARNING: %s: Duration cannot be more than the elapsed time since last sampling/transition point. "
        "duration=%llu, elapsed time=%llu for %s+%s. Data discarded.\n",
        m_fields->name.c_str(), number(duration), number(elapsed), nameOf(element),
        descriptorNameOf(element));
}

bool Metric::admit_i(std::uint64_t timestamp, const DataElement& element, std::uint64_t duration,
                     Admission& admission) const {
    const Fields& fields = *m_fields;
    if (element.m_container == fields.id) {
        admission.row = element.m_row;
    } else {
        const std::uint32_t guess =
            fields.lastRow < fields.rows.size() ? fields.rows[fields.lastRow].next : 0;
        admission.row = fields.rows.find(element.m_entity, element.m_descriptor, guess);
    }
    const bool isFirst = admission.row == RowTable::NONE;
    const std::uint64_t previous =
        isFirst ? fields.metadata.startTSC : fields.rows[admission.row].lastTimestamp;
    if (timestamp < previous || (timestamp == previous && !isFirst)) {
        warnNotIncreasing_i(timestamp, element, previous);
        return false;
    }
    admission.elapsed = timestamp - previous;
    if (duration != NO_DURATION && duration > admission.elapsed) {
        warnTooLong_i(element, duration, admission.elapsed);
        return false;
    }
    return true;
}

/// Keeps a given duration within the limit. The check at the door compares with the combination's previous sample
/// already; only the limit of a residency, the entity's last sampling point, can be closer.
std::uint64_t Metric::clampDuration_i(const DataElement& element, std::uint64_t duration,
                                      std::uint64_t limit) const {
    if (duration <= limit) {
        return duration;
    }
    const char* name = m_fields->name.c_str();
    const char* entity = nameOf(element);
    if (m_fields->rules->isResidency) {
        logWarning(
            "WARNING: %s: Duration provided for MetricType::SampledResidency is greater than the time "
            "elapsed "
            "since last sampling point for entity=%s. Resetting duration to be the time since the last "
            "sampling point for %s.\n",
            name, entity, entity);
    } else if (m_fields->rules->isSampled) {
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

std::uint64_t Metric::decideDuration_i(std::uint64_t timestamp, const DataElement& element,
                                       std::uint64_t duration, const Admission& admission) const {
    Fields& fields = *m_fields;
    std::uint64_t limit = admission.elapsed;
    if (fields.rules->isResidency) {
        limit =
            ticksBetween(fields.rows.timesOf(fields.rows[admission.row].entityNumber).lastPoint, timestamp);
    }
    if (duration == 0) {
        return limit;
    }
    if (duration == NO_DURATION) {
        // A trace knows when things happened, so there the elapsed time is right; a sample may lack a duration.
        return fields.rules->isSampled ? 0 : limit;
    }
    return clampDuration_i(element, duration, limit);
}

void Metric::warnTooManyTicks_i(std::uint64_t timestamp, const DataElement& element,
                                std::uint64_t duration) const {
    std::uint64_t ticks = 0;
    element.m_value->toUInt(ticks);
    if (ticks > duration) {
        logWarning("WARNING: %s: Clock ticks spent by %s in state %s=%llu is greater than the duration=%llu "
                   "since the "
                   "last sampling point. Note this sample at timestamp=%llu will be discarded.\n",
                   m_fields->name.c_str(), nameOf(element), descriptorNameOf(element), number(ticks),
                   number(duration), number(timestamp));
    }
}

void Metric::append_i(std::uint64_t timestamp, DataElement& element, std::uint64_t duration,
                      const Admission& admission) {
    Fields& fields = *m_fields;
    element.m_duration = duration;
    element.m_reportingDescriptor = element.m_descriptor;
    if (element.m_descriptor == nullptr) {
        if (fields.reportingDescriptor == nullptr) {
            fields.reportingDescriptor = DataDescriptorBuilder(fields.name).build();
        }
        element.m_reportingDescriptor = fields.reportingDescriptor;
    }
    element.m_container = fields.id;
    element.m_row = admission.row;
    fields.pending.add(element, admission.elapsed);
    fields.rows[admission.row].lastTimestamp = timestamp;
    fields.rows[fields.lastRow].next = admission.row;
    fields.lastRow = admission.row;
    fields.currentPoint = timestamp;
    fields.point.m_timestamp = timestamp;
}

int Metric::setData(std::uint64_t timestamp, DataElement& element, std::uint64_t duration) {
    Admission admission;
    if (!hasNeeded_i(timestamp, element) || !admit_i(timestamp, element, duration, admission)) {
        return 1;
    }
    Fields& fields = *m_fields;
    const bool isResidency = fields.rules->isResidency;
    if (admission.row == RowTable::NONE) {
        admission.row = fields.rows.add(element.m_entity, element.m_descriptor);
        if (isResidency) {
            fields.rows.timesOf(fields.rows[admission.row].entityNumber).lastPoint = fields.metadata.startTSC;
        }
    }
    if (fields.noData) {
        fields.currentPoint = timestamp;
        fields.point.m_previousTimestamp = fields.metadata.startTSC;
    }
    fields.latest = timestamp;
    const bool isSampled = fields.rules->isSampled;
    if (isSampled && timestamp != fields.currentPoint) {
        pushToStream();
    }
    // Behind the push, which sets the entities' last sampling points.
    const std::uint64_t decided = decideDuration_i(timestamp, element, duration, admission);
    if (isResidency) {
        warnTooManyTicks_i(timestamp, element, decided);
    }
    append_i(timestamp, element, decided, admission);
    fields.noData = false;
    if (!isSampled) {
        pushToStream();
    }
    return 0;
}

bool Metric::agreeDurations_i() {
    Fields& fields = *m_fields;
    ++fields.checks;
    bool agree = true;
    for (const PendingSample& sample : fields.pending.samples()) {
        const RowTable::Row& row = fields.rows[sample.row];
        RowTable::EntityTimes& times = fields.rows.timesOf(row.entityNumber);
        if (times.check != fields.checks) {
            times = {fields.point.m_timestamp, sample.duration, fields.checks};
        } else if (times.duration != sample.duration) {
            agree = false;
            const char* entity = row.entity->getName().c_str();
            logWarning(
                "WARNING: %s: valid duration since the last sampling point for %s = %llu, but that provided "
                "for %s in state %s= %llu. All data provided for the previous sampling point will be "
                "discarded.\n",
                fields.name.c_str(), entity, number(times.duration), entity,
                row.descriptor->getName().c_str(), number(sample.duration));
        }
    }
    return agree;
}

void Metric::initializeAccumulators_i() {
    Fields& fields = *m_fields;
    fields.initializationPending = false;
    for (const std::shared_ptr<Accumulator>& accumulator : fields.accumulators) {
        if (accumulator->initialize(*this, fields.metadata) != 0) {
            logWarning("WARNING: Metric container %s couldn't initialize an accumulator!\n",
                       fields.name.c_str());
        }
    }
}

int Metric::pushToStream() {
    Fields& fields = *m_fields;
    int result = 0;
    if (!fields.rules->isResidency || agreeDurations_i()) {
        if (fields.initializationPending) {
            initializeAccumulators_i();
        }
        for (const std::shared_ptr<Accumulator>& accumulator : fields.accumulators) {
            if (accumulator->processMessage(*this) != 0) {
                logWarning("WARNING: Metric container %s reports an accumulator processMessage error!\n",
                           fields.name.c_str());
                result = 1;
            }
        }
        fields.point.m_previousTimestamp = fields.point.m_timestamp;
    }
    fields.pending.clear();
    return result;
}

} // namespace pwr
