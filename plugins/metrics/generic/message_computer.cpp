#include "plugins/metrics/generic/message_computer.h"

#include <algorithm>

#include "common/metrics/prefetch.h"
#include "plugins/metrics/reading_value.h"

namespace pwr {

namespace {

// So many rows take as long as memory takes to answer.
constexpr std::size_t PREFETCH_ROWS = 4;

} // namespace

MessageComputer::MessageComputer(const DeclaredMessage& message, MetricContainer& container,
                                 const SystemMetadata& system)
    : m_message(message), m_metric(*message.metric), m_container(container), m_system(system),
      m_states(stateNames(m_metric)) {
    update();
}

void MessageComputer::update() {
    for (std::size_t i = m_rows.size(); i < m_message.instances.size(); ++i) {
        const auto& [entity, descriptor] = m_message.instances[i];
        const auto known = std::find(m_entities.begin(), m_entities.end(), entity);
        const auto number = static_cast<std::size_t>(known - m_entities.begin());
        if (known == m_entities.end()) {
            m_entities.push_back(entity);
        }
        m_rows.push_back({.element = DataElement(entity, descriptor),
                          .entity = number,
                          .counter = CounterDifference(m_metric.width),
                          .ticks = TicksOfCounter(m_metric.scale, m_system.twaClockFreq)});
    }
    m_isLeftOut.resize(m_entities.size());
    m_known.resize(m_rows.size());
}

void MessageComputer::process(const CollectionData& reading) {
    const tw_driver_msg& header = reading.header();
    if ((header.flags & (tw_driver_msg_flag::RESET | tw_driver_msg_flag::GAP)) != 0) {
        beginAnew_i(header);
    }
    m_pending.clear();
    std::fill(m_isLeftOut.begin(), m_isLeftOut.end(), false);
    for (std::size_t i = 0; i < reading.size(); ++i) {
        const std::size_t index = header.first_instance + i;
        if (index + PREFETCH_ROWS < m_rows.size()) {
            prefetchForWrite(&m_rows[index + PREFETCH_ROWS]);
            prefetchForWrite(&m_rows[index + PREFETCH_ROWS].lastTick);
        }
        if (index < m_rows.size()) {
            processRow_i(index, reading, i);
        }
    }
    flushResidency_i(header.timestamp);
}

/// Of the instances of this reading, readings before it are missing.
void MessageComputer::beginAnew_i(const tw_driver_msg& header) {
    const std::size_t end =
        std::min<std::size_t>(m_rows.size(), header.first_instance + std::size_t{header.count});
    for (std::size_t i = header.first_instance; i < end; ++i) {
        forget_i(m_rows[i]);
    }
    ++(m_metric.type >= Metric::MetricType::TracedValueTransition ? m_container.lossy : m_container.gaps);
}

void MessageComputer::processRow_i(std::size_t index, const CollectionData& reading, std::size_t at) {
    Row& row = m_rows[index];
    const std::uint64_t tick = reading.header().timestamp;
    const bool wantsText = m_metric.rawType == DataType::STRING;
    if (!reading.isPresent(at) || reading.isText(at) != wantsText) {
        ++m_container.missing;
        m_isLeftOut[row.entity] = true;
        forget_i(row);
        return;
    }
    if (row.hasLast && tick <= row.lastTick) {
        m_isLeftOut[row.entity] = true; // no time has passed
        return;
    }
    if (m_metric.source == MetricDeclaration::Source::COUNTER) {
        processCounter_i(index, reading.getBits(at), tick);
    } else if (m_metric.type == Metric::MetricType::TracedValueTransition) {
        processTransition_i(index, reading, at);
    } else {
        processLevel_i(row, reading, at, tick);
    }
    row.lastInterval = row.hasLast ? tick - row.lastTick : row.lastInterval;
    row.lastTick = tick;
    row.hasLast = true;
}

void MessageComputer::processCounter_i(std::size_t index, std::uint64_t bits, std::uint64_t tick) {
    Row& row = m_rows[index];
    std::uint64_t difference = 0;
    switch (row.counter.next(bits, tick, difference)) {
    case CounterDifference::Result::FIRST: m_isLeftOut[row.entity] = true; return;
    case CounterDifference::Result::RESET:
        ++m_container.reset;
        m_isLeftOut[row.entity] = true;
        return;
    case CounterDifference::Result::WRAPPED: ++m_container.wrapped; break;
    case CounterDifference::Result::COUNTED: break;
    }
    addDifference_i(index, difference, tick, tick - row.lastTick);
}

void MessageComputer::addDifference_i(std::size_t index, std::uint64_t difference, std::uint64_t tick,
                                      std::uint64_t duration) {
    Row& row = m_rows[index];
    if (m_metric.type == Metric::MetricType::SampledResidency) {
        m_pending.push_back({index, row.ticks.next(difference), duration});
        return;
    }
    row.element.setValue(valueOf(difference, m_metric));
    m_container.metric->setData(tick, row.element, duration);
}

void MessageComputer::processLevel_i(Row& row, const CollectionData& reading, std::size_t at,
                                     std::uint64_t tick) {
    const bool isEvent = m_metric.type == Metric::MetricType::TracedEvent;
    const std::uint64_t duration = row.hasLast ? tick - row.lastTick : firstDuration_i(row, tick);
    if (duration == 0 && !isEvent) {
        return;
    }
    if (m_metric.type == Metric::MetricType::SampledResidency) {
        m_pending.push_back(
            {static_cast<std::size_t>(&row - m_rows.data()), row.ticks.next(reading.getBits(at)), duration});
        return;
    }
    setValue_i(row, reading, at);
    m_container.metric->setData(tick, row.element, isEvent ? Metric::NO_DURATION : duration);
}

/// The state that ends is charged with the time that it is known to have lasted, which ends where a gap begins.
void MessageComputer::processTransition_i(std::size_t index, const CollectionData& reading, std::size_t at) {
    Row& row = m_rows[index];
    const std::uint64_t tick = reading.header().timestamp;
    const bool isBehindGap = !row.hasLast && m_known.hasBegun(index);
    const std::uint64_t known = isBehindGap ? m_known.lastStateTicks(index) : Metric::NO_DURATION;
    if (row.hasLast) {
        m_known.goOn(index, tick);
    } else {
        m_known.begin(index, tick);
    }
    if (!isChange_i(row, reading, at)) {
        return;
    }
    m_known.change(index, tick);
    setValue_i(row, reading, at);
    m_container.metric->setData(tick, row.element, known);
}

void MessageComputer::setValue_i(Row& row, const CollectionData& reading, std::size_t at) const {
    if (!m_states.empty()) {
        const auto state = m_states.find(reading.getBits(at));
        row.element.setValue(state == m_states.end() ? Data(std::to_string(reading.getBits(at)))
                                                     : state->second);
    } else if (m_metric.isRaw) {
        row.element.setValue(Data(reading.getBits(at)));
    } else if (m_metric.rawType == DataType::STRING) {
        row.element.setValue(Data(std::string(reading.getText(at))));
    } else {
        row.element.setValue(valueOf(reading.getBits(at), m_metric));
    }
}

void MessageComputer::finish(std::uint64_t stopTick) {
    if (m_metric.type == Metric::MetricType::TracedValueTransition) {
        const std::string note = m_known.note(m_system.startTSC, stopTick);
        if (!note.empty()) {
            m_container.notes.push_back(note);
        }
    }
}

/// How long a level stands for when the reading before is not known.
std::uint64_t MessageComputer::firstDuration_i(Row& row, std::uint64_t tick) const {
    if (!row.wasRead) {
        row.wasRead = true;
        row.lastInterval = tick > m_system.startTSC ? tick - m_system.startTSC : 0;
        return row.lastInterval;
    }
    return std::max<std::uint64_t>(row.lastInterval, 1);
}

bool MessageComputer::isChange_i(Row& row, const CollectionData& reading, std::size_t at) {
    const bool isSame =
        row.hasLast && row.lastBits == reading.getBits(at) && row.lastText == reading.getText(at);
    row.lastBits = reading.getBits(at);
    row.lastText = reading.getText(at);
    return !isSame;
}

void MessageComputer::flushResidency_i(std::uint64_t tick) {
    for (const Pending& pending : m_pending) {
        Row& row = m_rows[pending.row];
        if (m_isLeftOut[row.entity]) {
            continue;
        }
        m_container.cut += pending.value > pending.duration ? 1 : 0;
        row.element.setValue(Data(std::min(pending.value, pending.duration)));
        m_container.metric->setData(tick, row.element, pending.duration);
    }
}

void MessageComputer::forget_i(Row& row) {
    row.hasLast = false;
    row.counter.forget();
}

} // namespace pwr
