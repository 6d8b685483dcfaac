#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace pwr {

/// One value for each row, in pieces that never move: growing copies nothing and takes no more memory than the
/// rows need, which a doubling vector of large elements would.
template <class T, unsigned PIECE_BITS = 6> class RowColumn {
public:
    /// Makes room for so many rows; new ones are default-constructed.
    void grow(std::size_t rows) {
        while (m_pieces.size() << PIECE_BITS < rows) {
            m_pieces.push_back(std::make_unique<T[]>(std::size_t{1} << PIECE_BITS));
        }
    }
    /// Gives the memory back.
    void clear() {
        m_pieces.clear();
        m_pieces.shrink_to_fit();
    }

    [[nodiscard]] std::size_t capacity() const { return m_pieces.size() << PIECE_BITS; }

    T& operator[](std::uint32_t row) { return m_pieces[row >> PIECE_BITS][row & MASK]; }
    const T& operator[](std::uint32_t row) const { return m_pieces[row >> PIECE_BITS][row & MASK]; }

private:
    static constexpr std::uint32_t MASK = (1U << PIECE_BITS) - 1;

    std::vector<std::unique_ptr<T[]>> m_pieces;
};

} // namespace pwr
