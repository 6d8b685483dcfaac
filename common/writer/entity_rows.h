#pragma once

#include "common/model/entity_handle.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace pwr {

/// The rows of a table: a set of entities in the order of their ids, and the way from an entity to its row.
/// Entities are only appended and put in order when somebody looks, so that adding them in any order stays cheap.
class EntityRows {
public:
    static constexpr std::size_t NO_ROW = static_cast<std::size_t>(-1);

    void add(const EntityHandle* entity) {
        m_ordered = m_ordered && (m_entities.empty() || m_entities.back()->getId() < entity->getId());
        m_entities.push_back(entity);
    }

    const std::vector<const EntityHandle*>& entities() const {
        if (!m_ordered) {
            order_i();
        }
        return m_entities;
    }

    /// Freezes the order and makes find() possible.
    void freeze() {
        m_ids.clear();
        m_ids.reserve(entities().size());
        for (const EntityHandle* entity : m_entities) {
            m_ids.push_back(entity->getId());
        }
    }

    std::size_t find(const EntityHandle* entity) const {
        const std::uint64_t id = entity->getId();
        // Tables are filled and read row by row: the row asked for last, or the one behind it, is nearly always right.
        for (std::size_t row = m_lastRow; row < m_ids.size() && row < m_lastRow + 2; ++row) {
            if (m_ids[row] == id) {
                m_lastRow = row;
                return row;
            }
        }
        const auto found = std::lower_bound(m_ids.begin(), m_ids.end(), id);
        if (found == m_ids.end() || *found != id) {
            return NO_ROW;
        }
        m_lastRow = static_cast<std::size_t>(found - m_ids.begin());
        return m_lastRow;
    }

private:
    void order_i() const {
        const auto before = [](const EntityHandle* a, const EntityHandle* b) {
            return a->getId() < b->getId();
        };
        std::sort(m_entities.begin(), m_entities.end(), before);
        m_entities.erase(std::unique(m_entities.begin(), m_entities.end()), m_entities.end());
        m_ordered = true;
    }

    mutable std::vector<const EntityHandle*> m_entities;
    mutable bool m_ordered = true;
    mutable std::size_t m_lastRow = 0;
    std::vector<std::uint64_t> m_ids;
};

} // namespace pwr
