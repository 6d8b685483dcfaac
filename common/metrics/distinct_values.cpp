#include "common/metrics/distinct_values.h"

#include <utility>

namespace pwr {

void DistinctValues::grow_i() {
    const std::size_t oldSize = m_entries == nullptr ? 0 : m_mask + std::size_t{1};
    const std::size_t newSize = oldSize == 0 ? 2 : 2 * oldSize;
    const std::unique_ptr<Entry[]> old = std::exchange(m_entries, std::make_unique<Entry[]>(newSize));
    m_mask = static_cast<std::uint32_t>(newSize - 1);
    for (std::size_t slot = 0; slot < oldSize; ++slot) {
        if (old[slot].samples != 0) {
            place(old[slot].key) = old[slot];
        }
    }
}

} // namespace pwr
