#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace pwr {

/// For how much of a collection the states of a trace are known: of each row from its first event on, without the gaps.
/// What lies in a gap belongs to no state.
class KnownTime {
public:
    void resize(std::size_t rows) { m_rows.resize(rows); }

    /// An event of a row that has one before it, since which everything is known.
    void goOn(std::size_t row, std::uint64_t tick) { m_rows[row].last = tick; }
    /// The row's first event, or its first one behind a gap: what is known begins anew.
    void begin(std::size_t row, std::uint64_t tick);
    /// The row's state changed at this tick.
    void change(std::size_t row, std::uint64_t tick) { m_rows[row].change = tick; }

    bool hasBegun(std::size_t row) const { return m_rows[row].first != 0; }
    /// How long the state that the row had last is known to have lasted; at least a tick.
    std::uint64_t lastStateTicks(std::size_t row) const;

    /// What readers should know of it; "" when all is known.
    std::string note(std::uint64_t start, std::uint64_t stop) const;

private:
    struct Row {
        std::uint64_t first = 0; // 0: no event yet
        std::uint64_t last = 0;
        std::uint64_t change = 0;
        std::uint64_t inGaps = 0;
    };

    std::vector<Row> m_rows;
};

} // namespace pwr
