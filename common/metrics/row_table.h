#pragma once

#include <bit>
#include <cstdint>
#include <vector>

#include "common/metrics/flat_index.h"
#include "common/metrics/row_column.h"

namespace pwr {

class DataDescriptor;
class EntityHandle;

/// The combinations of entity and descriptor that a container has seen, numbered densely in the order of their
/// first samples. The number is what everything behind the intake indexes its arrays by.
class RowTable {
public:
    static constexpr std::uint32_t NONE = FlatIndex::NONE;

    struct Row {
        alignas(32) const EntityHandle* entity; // a row never takes more than one line of memory
        const DataDescriptor* descriptor;       // may be null
        std::uint64_t lastTimestamp;
        std::uint32_t entityNumber;
        std::uint32_t next; // the row that came after this one last time: the first guess for the next sample
    };

    /// What residencies need to know of an entity.
    struct EntityTimes {
        std::uint64_t lastPoint = 0;
        std::uint64_t duration = 0; // of the entity's first sample in the sampling point being checked
        std::uint64_t check = 0;    // the number of that check
    };

    [[nodiscard]] std::uint32_t size() const { return m_count; }
    Row& operator[](std::uint32_t row) { return m_rows[row]; }
    const Row& operator[](std::uint32_t row) const { return m_rows[row]; }

    [[nodiscard]] bool isRow(std::uint32_t row, const EntityHandle* entity,
                             const DataDescriptor* descriptor) const {
        return m_rows[row].entity == entity && m_rows[row].descriptor == descriptor;
    }
    /// NONE when the combination is new.
    [[nodiscard]] std::uint32_t find(const EntityHandle* entity, const DataDescriptor* descriptor) const;

    /// Numbers a new combination; the entity and the descriptor are listed when they are new as well.
    std::uint32_t add(const EntityHandle* entity, const DataDescriptor* descriptor);

    EntityTimes& timesOf(std::uint32_t entityNumber) { return m_entityTimes[entityNumber]; }
    [[nodiscard]] const std::vector<const EntityHandle*>& entities() const { return m_entities; }
    [[nodiscard]] const std::vector<const DataDescriptor*>& descriptors() const { return m_descriptors; }

    /// Keeps times for entities, which only residencies pay for.
    void keepEntityTimes() { m_keepTimes = true; }

    /// The rows in the order in which tables show them: by entity, then descriptor, in the order of their ids;
    /// those without a descriptor come first.
    [[nodiscard]] std::vector<std::uint32_t> sorted() const;

private:
    static std::uint64_t hash_i(const EntityHandle* entity, const DataDescriptor* descriptor) {
        const auto first = reinterpret_cast<std::uintptr_t>(entity);
        const auto second = reinterpret_cast<std::uintptr_t>(descriptor);
        return FlatIndex::mix((first >> 4) ^ std::rotl(std::uint64_t{second >> 4}, 31));
    }
    std::uint32_t listEntity_i(const EntityHandle* entity);
    void listDescriptor_i(const DataDescriptor* descriptor);

    RowColumn<Row> m_rows;
    std::uint32_t m_count = 0;
    FlatIndex m_index;
    std::vector<const EntityHandle*> m_entities;
    FlatIndex m_entityIndex;
    std::vector<EntityTimes> m_entityTimes;
    std::vector<const DataDescriptor*> m_descriptors;
    FlatIndex m_descriptorIndex;
    bool m_keepTimes = false;
};

} // namespace pwr
