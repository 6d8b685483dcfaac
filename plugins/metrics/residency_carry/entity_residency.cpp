#include "plugins/metrics/residency_carry/entity_residency.h"

#include <algorithm>
#include <numeric>

namespace pwr {

namespace {

constexpr double TICKS_PER_MHZ_SECOND = 1000000.0;

} // namespace

EntityResidency::EntityResidency(const EntityHandle* entity, const std::vector<State>& states,
                                 const MetricDeclaration& metric, float clockMHz, const DataDescriptor* rest,
                                 const DataDescriptor* notBooked)
    : m_rest(entity, rest), m_notBooked(entity, notBooked), m_entity(entity), m_booked(states.size()),
      m_carry(states.size(), rest == nullptr), m_hasRest(rest != nullptr),
      m_second(static_cast<std::uint64_t>(static_cast<double>(clockMHz) * TICKS_PER_MHZ_SECOND)) {
    for (const State& state : states) {
        m_counters.push_back({DataElement(entity, state.descriptor), state.instance,
                              CounterDifference(metric.width), TicksOfCounter(metric.scale, clockMHz)});
    }
}

void EntityResidency::process(const CollectionData& reading, MetricContainer& container) {
    if (!isComplete_i(reading)) {
        container.missing += static_cast<std::uint64_t>(
            std::count_if(m_counters.begin(), m_counters.end(),
                          [&](const Counter& c) { return !isInRecord_i(reading, c.instance); }));
        interrupt();
        return;
    }
    if (!m_carry.isRunning()) {
        start_i(reading);
        return;
    }
    if (!readDifferences_i(reading, container)) {
        ++container.reset;
        interrupt();
        start_i(reading);
        return;
    }
    m_carry.step(reading.header().timestamp, m_booked);
}

bool EntityResidency::isInRecord_i(const CollectionData& reading, std::size_t instance) const {
    const std::size_t first = reading.header().first_instance;
    return instance >= first && reading.isPresent(instance - first) && !reading.isText(instance - first);
}

bool EntityResidency::isComplete_i(const CollectionData& reading) const {
    return std::all_of(m_counters.begin(), m_counters.end(),
                       [&](const Counter& c) { return isInRecord_i(reading, c.instance); });
}

void EntityResidency::start_i(const CollectionData& reading) {
    const tw_driver_msg& header = reading.header();
    for (Counter& counter : m_counters) {
        std::uint64_t none = 0;
        counter.first = reading.getBits(counter.instance - header.first_instance);
        counter.difference.forget();
        counter.difference.next(counter.first, header.timestamp, none);
    }
    m_carry.begin(header.timestamp);
}

/// False when the counters cannot be believed: one fell back, or more time was booked than there was.
bool EntityResidency::readDifferences_i(const CollectionData& reading, MetricContainer& container) {
    const tw_driver_msg& header = reading.header();
    for (std::size_t i = 0; i < m_counters.size(); ++i) {
        Counter& counter = m_counters[i];
        const std::uint64_t value = reading.getBits(counter.instance - header.first_instance);
        m_booked[i] = 0;
        // Kernels correct some times of a running processor downwards by a tick; a reset goes to zero.
        if (value < counter.difference.lastValue() && value >= counter.first && counter.first > 0) {
            ++container.back;
            continue;
        }
        std::uint64_t difference = 0;
        const CounterDifference::Result result = counter.difference.next(value, header.timestamp, difference);
        if (result == CounterDifference::Result::RESET || result == CounterDifference::Result::FIRST) {
            return false;
        }
        container.wrapped += result == CounterDifference::Result::WRAPPED ? 1 : 0;
        m_booked[i] = counter.ticks.next(difference);
    }
    const std::uint64_t total = std::accumulate(m_booked.begin(), m_booked.end(), std::uint64_t{0});
    return m_carry.overflowOf(header.timestamp, total) <= m_second;
}

void EntityResidency::interrupt() {
    m_gaps += m_carry.isRunning() ? 1 : 0;
    m_carry.end();
    while (m_carry.held() > 0) {
        const ResidencyCarry::Interval interval = m_carry.takeOldest();
        m_finished.push_back({interval.end,
                              interval.length,
                              interval.rest,
                              interval.notBooked,
                              {interval.states.begin(), interval.states.end()}});
    }
}

bool EntityResidency::isFinalAt(std::uint64_t tick) const {
    if (!m_finished.empty() && m_finished.front().end <= tick) {
        return true;
    }
    return m_carry.held() == 0 || m_carry.oldestEnd() > tick || m_carry.isOldestFinal();
}

void EntityResidency::postpone(std::uint64_t tick) {
    if (!isFinalAt(tick) && !m_carry.isOldestShown() && m_carry.held() > 1) {
        m_carry.mergeOldest();
    }
}

void EntityResidency::handOn(std::uint64_t tick, MetricContainer& container) {
    if (!m_finished.empty()) {
        if (m_finished.front().end == tick) {
            const Finished& finished = m_finished.front();
            handOn_i({finished.end, finished.length, finished.rest, finished.notBooked, finished.states},
                     container);
            m_finished.pop_front();
        }
        return;
    }
    if (m_carry.held() > 0 && m_carry.oldestEnd() == tick) {
        handOn_i(m_carry.takeOldest(), container);
    }
}

void EntityResidency::handOn_i(const ResidencyCarry::Interval& interval, MetricContainer& container) {
    for (std::size_t i = 0; i < m_counters.size(); ++i) {
        setData_i(m_counters[i].element, interval.states[i], interval, container);
    }
    if (m_hasRest) {
        setData_i(m_rest, interval.rest, interval, container);
    }
    setData_i(m_notBooked, interval.notBooked + (m_hasRest ? 0 : interval.rest), interval, container);
    m_covered += interval.length;
}

void EntityResidency::setData_i(DataElement& element, std::uint64_t ticks,
                                const ResidencyCarry::Interval& interval, MetricContainer& container) {
    element.setValue(Data(ticks));
    container.metric->setData(interval.end, element, interval.length);
}

} // namespace pwr
