#include "common/metrics/row_table.h"

#include <algorithm>
#include <numeric>
#include <tuple>

#include "common/model/data_descriptor.h"
#include "common/model/entity_handle.h"

namespace pwr {

namespace {

std::uint64_t hashAddress(const void* object) {
    return FlatIndex::mix(reinterpret_cast<std::uintptr_t>(object) >> 4);
}

/// Enters an object that is in neither list nor index yet; returns its number.
template <class T> std::uint32_t listOnce(const T* object, std::vector<const T*>& list, FlatIndex& index) {
    const std::uint32_t known =
        index.find(hashAddress(object), [&](std::uint32_t number) { return list[number] == object; });
    if (known != FlatIndex::NONE) {
        return known;
    }
    list.push_back(object);
    index.append([&](std::uint32_t number) { return hashAddress(list[number]); });
    return static_cast<std::uint32_t>(list.size() - 1);
}

} // namespace

std::uint32_t RowTable::find(const EntityHandle* entity, const DataDescriptor* descriptor) const {
    return m_index.find(hash_i(entity, descriptor),
                        [&](std::uint32_t row) { return isRow(row, entity, descriptor); });
}

std::uint32_t RowTable::listEntity_i(const EntityHandle* entity) {
    const std::uint32_t number = listOnce(entity, m_entities, m_entityIndex);
    if (m_keepTimes && number >= m_entityTimes.size()) {
        m_entityTimes.resize(number + std::size_t{1});
    }
    return number;
}

void RowTable::listDescriptor_i(const DataDescriptor* descriptor) {
    if (descriptor != nullptr) {
        listOnce(descriptor, m_descriptors, m_descriptorIndex);
    }
}

std::uint32_t RowTable::add(const EntityHandle* entity, const DataDescriptor* descriptor) {
    const std::uint32_t row = m_count;
    m_rows.grow(row + std::size_t{1});
    m_rows[row] = {entity, descriptor, 0, listEntity_i(entity), row + 1};
    listDescriptor_i(descriptor);
    m_index.append(
        [this](std::uint32_t number) { return hash_i(m_rows[number].entity, m_rows[number].descriptor); });
    m_count = row + 1;
    return row;
}

std::vector<std::uint32_t> RowTable::sorted() const {
    // The key is an order only: an entity of id 0 gives keys that others have as well.
    const auto key = [this](std::uint32_t number) {
        const Row& row = m_rows[number];
        const std::uint64_t id = row.entity->getId();
        const bool isPair = row.descriptor != nullptr;
        return std::tuple(isPair ? (id << 32) + row.descriptor->getId() : id, isPair, id);
    };
    std::vector<std::uint32_t> rows(m_count);
    std::iota(rows.begin(), rows.end(), 0U);
    std::stable_sort(rows.begin(), rows.end(),
                     [&](std::uint32_t left, std::uint32_t right) { return key(left) < key(right); });
    return rows;
}

} // namespace pwr
