#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace pwr {

/// Spreads the time of states that is booked late over the intervals it was spent in, for one entity.
///
/// A system books the time of an idle state when the processor wakes, and the time of a mode by whole
/// timer ticks. So a reading shows nothing for a while, then a step that may be longer than the interval
/// it appears in. What is known at a step: the time was spent before it, and not before the last step's
/// interval, whose remainder may still belong to it. Hence
///   - an interval is held back until the next step shows what it held. Where the states do not cover all
///     time (idle states), its unexplained time then belongs to none of them. Where they do (processor
///     modes), a later step may still fill it, so it is held until it is full or must go;
///   - a step that fits into its own interval stays there; a longer one fills the earliest unexplained
///     time first, the longest state first, because that one reached back furthest;
///   - the first step is cut to the time since the begin: more of it was spent before;
///   - a step of more than all unexplained time (the clock of the bookings and ours differ by up to a
///     timer tick) leaves a rest, which goes into the next intervals;
///   - at a gap or the end everything held is handed on, its unexplained time as not booked.
/// So no interval holds more than its length, and all booked time is handed on exactly once.
/// An interval that must not be held any longer is joined to the one after it (mergeOldest), which keeps
/// both promises however long a processor sleeps.
/// All times in ticks. In a steady state nothing is allocated.
class ResidencyCarry {
public:
    /// Intervals held back at most; the caller joins older ones.
    static constexpr std::size_t MAX_HELD = 16;

    /// One interval of the entity. Its states, rest and notBooked add up to its length.
    struct Interval {
        std::uint64_t end = 0;
        std::uint64_t length = 0;
        std::uint64_t rest = 0;      ///< shown by a later step to belong to no state
        std::uint64_t notBooked = 0; ///< never explained: may belong to any state or none
        std::span<const std::uint64_t> states;
    };

    /// `isCovering`: together the states cover all time.
    ResidencyCarry(std::size_t stateCount, bool isCovering);

    /// Starts a line of readings: the first one, or the first after a gap. Nothing may be held.
    void begin(std::uint64_t tick);
    bool isRunning() const { return m_running; }

    /// A reading: the ticks booked for each state since the one before. Returns how much of it had no
    /// place yet, or was cut from the first step. The tick must be later than the one before, and fewer
    /// than MAX_HELD + 1 intervals may be held.
    void step(std::uint64_t tick, std::span<const std::uint64_t> booked);

    /// Ends the line of readings: what is held becomes final. The caller then takes all of it.
    void end();

    std::size_t held() const { return m_used; }
    /// End of the oldest interval held; only when there is one.
    std::uint64_t oldestEnd() const { return slot_i(0).end; }
    /// Whether the oldest interval held is final.
    bool isOldestFinal() const { return m_used > 0 && (open_i() > 0 || room_i(slot_i(0)) == 0); }
    /// Whether a step came after the oldest interval held: no sleep reaches further back than that.
    bool isOldestShown() const { return m_shown > 0; }
    /// Takes the oldest interval; its states stay valid until the next call of any other member.
    Interval takeOldest();
    /// Joins the oldest interval to the one after it; needs two.
    void mergeOldest();

    /// How much of a step would find no place, given everything held and the interval up to `tick`.
    std::uint64_t overflowOf(std::uint64_t tick, std::uint64_t booked) const;

    /// Booked time that was cut from first steps: spent before the begin.
    std::uint64_t cutAtBegin() const { return m_cut; }
    /// Booked time that found no place before a gap or the end.
    std::uint64_t lost() const { return m_lost; }

private:
    static constexpr std::size_t SLOTS = MAX_HELD + 2;

    struct Slot {
        std::uint64_t end = 0;
        std::uint64_t length = 0;
        std::uint64_t filled = 0;
    };

    const Slot& slot_i(std::size_t index) const { return m_slots[(m_first + index) % SLOTS]; }
    Slot& slot_i(std::size_t index) { return m_slots[(m_first + index) % SLOTS]; }
    static std::uint64_t room_i(const Slot& slot) { return slot.length - slot.filled; }
    std::span<std::uint64_t> states_i(std::size_t index);
    /// The first interval whose unexplained time a step may fill.
    std::size_t open_i() const { return m_isCovering ? 0 : m_shown; }
    void push_i(std::uint64_t tick);
    void cutFirstStep_i();
    void orderStates_i();
    void fill_i(std::size_t index);
    std::uint64_t pending_i() const;

    std::size_t m_stateCount;
    bool m_isCovering;
    std::array<Slot, SLOTS> m_slots;
    std::vector<std::uint64_t> m_ticks;   // stateCount values per slot
    std::vector<std::uint64_t> m_pending; // booked, without a place yet
    std::vector<std::size_t> m_order;     // states of a step, longest first
    std::size_t m_first = 0;
    std::size_t m_used = 0;
    std::size_t m_shown = 0; // so many of the oldest had a step after them
    std::uint64_t m_last = 0;
    std::uint64_t m_cut = 0;
    std::uint64_t m_lost = 0;
    bool m_running = false;
    bool m_stepped = false;
};

} // namespace pwr
