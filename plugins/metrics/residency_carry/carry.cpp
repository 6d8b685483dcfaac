#include "plugins/metrics/residency_carry/carry.h"

#include <algorithm>
#include <numeric>

namespace pwr {

namespace {

std::uint64_t sum(std::span<const std::uint64_t> values) {
    return std::accumulate(values.begin(), values.end(), std::uint64_t{0});
}

} // namespace

ResidencyCarry::ResidencyCarry(std::size_t stateCount, bool isCovering)
    : m_stateCount(stateCount), m_isCovering(isCovering), m_ticks(stateCount * SLOTS), m_pending(stateCount),
      m_order(stateCount) {
    std::iota(m_order.begin(), m_order.end(), std::size_t{0});
}

void ResidencyCarry::begin(std::uint64_t tick) {
    m_first = 0;
    m_used = 0;
    m_shown = 0;
    m_last = tick;
    m_running = true;
    m_stepped = false;
    std::fill(m_pending.begin(), m_pending.end(), 0);
}

void ResidencyCarry::step(std::uint64_t tick, std::span<const std::uint64_t> booked) {
    push_i(tick);
    const std::size_t own = m_used - 1;
    fill_i(own); // what earlier steps left over is older than this one
    const std::uint64_t total = sum(booked);
    if (total == 0) {
        return;
    }
    std::transform(booked.begin(), booked.end(), m_pending.begin(), m_pending.begin(), std::plus<>());
    if (!m_stepped) {
        cutFirstStep_i();
        m_stepped = true;
    }
    orderStates_i();
    if (pending_i() > room_i(slot_i(own))) {
        for (std::size_t index = open_i(); index < own; ++index) {
            fill_i(index);
        }
    }
    fill_i(own);
    m_shown = own;
}

void ResidencyCarry::end() {
    m_lost += pending_i();
    std::fill(m_pending.begin(), m_pending.end(), 0);
    m_running = false;
}

ResidencyCarry::Interval ResidencyCarry::takeOldest() {
    const Slot& slot = slot_i(0);
    const std::uint64_t room = room_i(slot);
    const bool isSettled = open_i() > 0;
    const Interval interval{slot.end, slot.length, isSettled ? room : 0, isSettled ? 0 : room, states_i(0)};
    m_first = (m_first + 1) % SLOTS;
    --m_used;
    m_shown -= m_shown > 0 ? 1 : 0;
    return interval;
}

void ResidencyCarry::mergeOldest() {
    const std::span<std::uint64_t> from = states_i(0);
    const std::span<std::uint64_t> into = states_i(1);
    std::transform(from.begin(), from.end(), into.begin(), into.begin(), std::plus<>());
    slot_i(1).length += slot_i(0).length;
    slot_i(1).filled += slot_i(0).filled;
    m_first = (m_first + 1) % SLOTS;
    --m_used;
    m_shown -= m_shown > 0 ? 1 : 0;
}

std::uint64_t ResidencyCarry::overflowOf(std::uint64_t tick, std::uint64_t booked) const {
    std::uint64_t room = tick - m_last;
    for (std::size_t index = open_i(); index < m_used; ++index) {
        room += room_i(slot_i(index));
    }
    const std::uint64_t wanted = pending_i() + booked;
    return m_stepped && wanted > room ? wanted - room : 0;
}

std::span<std::uint64_t> ResidencyCarry::states_i(std::size_t index) {
    return std::span(m_ticks).subspan((m_first + index) % SLOTS * m_stateCount, m_stateCount);
}

void ResidencyCarry::push_i(std::uint64_t tick) {
    ++m_used;
    slot_i(m_used - 1) = {tick, tick - m_last, 0};
    const std::span<std::uint64_t> states = states_i(m_used - 1);
    std::fill(states.begin(), states.end(), 0);
    m_last = tick;
}

void ResidencyCarry::cutFirstStep_i() {
    std::uint64_t room = 0;
    for (std::size_t index = 0; index < m_used; ++index) {
        room += room_i(slot_i(index));
    }
    // The stretch that began before us is at least as long as what is too much: the longest one.
    while (pending_i() > room) {
        const auto longest = std::max_element(m_pending.begin(), m_pending.end());
        const std::uint64_t cut = std::min(*longest, pending_i() - room);
        *longest -= cut;
        m_cut += cut;
    }
}

void ResidencyCarry::orderStates_i() {
    std::sort(m_order.begin(), m_order.end(), [this](std::size_t left, std::size_t right) {
        return m_pending[left] != m_pending[right] ? m_pending[left] > m_pending[right] : left < right;
    });
}

void ResidencyCarry::fill_i(std::size_t index) {
    Slot& slot = slot_i(index);
    if (room_i(slot) == 0 || pending_i() == 0) {
        return;
    }
    const std::span<std::uint64_t> states = states_i(index);
    for (const std::size_t state : m_order) {
        const std::uint64_t amount = std::min(m_pending[state], room_i(slot));
        m_pending[state] -= amount;
        states[state] += amount;
        slot.filled += amount;
    }
}

std::uint64_t ResidencyCarry::pending_i() const {
    return sum(m_pending);
}

} // namespace pwr
