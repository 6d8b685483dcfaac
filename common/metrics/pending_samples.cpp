#include "common/metrics/pending_samples.h"

#include <algorithm>

#include "common/metrics/data_point.h"
#include "common/metrics/row_table.h"

namespace pwr {

void PendingSamples::keep_i(const DataElement& element, PendingSample& sample, bool isPlain) {
    if (m_keptCount == m_kept.size()) {
        m_kept.push_back({m_count, element});
    } else {
        m_kept[m_keptCount].position = m_count;
        m_kept[m_keptCount].element = element;
    }
    if (!isPlain) {
        sample.bits = m_keptCount;
    }
    ++m_keptCount;
}

const PendingSamples::Kept* PendingSamples::findKept_i(std::size_t position) const {
    const auto end = m_kept.begin() + static_cast<std::ptrdiff_t>(m_keptCount);
    const auto found =
        std::lower_bound(m_kept.begin(), end, position,
                         [](const Kept& kept, std::size_t wanted) { return kept.position < wanted; });
    return found != end && found->position == position ? &*found : nullptr;
}

Data PendingSamples::valueOf(const PendingSample& sample) const {
    const auto position = static_cast<std::size_t>(&sample - m_samples.data());
    const Kept* kept = findKept_i(position);
    return kept != nullptr ? *kept->element.m_value : makeData(sample.type, sample.bits);
}

void PendingSamples::fill_i(const PendingSample& sample, DataElement& element) const {
    const RowTable::Row& row = m_rows[sample.row];
    element.m_entity = row.entity;
    element.m_descriptor = row.descriptor;
    element.m_info = nullptr;
    element.m_value = makeData(sample.type, sample.bits);
    element.m_duration = sample.duration;
    element.m_container = DataElement::NO_CONTAINER; // the place may have held another combination's element
    element.m_reportingDescriptor = row.descriptor != nullptr ? row.descriptor : m_reportingDescriptor;
}

std::span<const DataElement> PendingSamples::elements() {
    for (; m_elementCount < m_count; ++m_elementCount) {
        if (m_elementCount == m_elements.size()) {
            m_elements.emplace_back(nullptr, nullptr);
        }
        if (const Kept* kept = findKept_i(m_elementCount)) {
            m_elements[m_elementCount] = kept->element;
        } else {
            fill_i(m_samples[m_elementCount], m_elements[m_elementCount]);
        }
    }
    return std::span<const DataElement>(m_elements).first(m_elementCount);
}

std::span<const DataElement> DataPoint::getElements() const {
    return m_samples->elements();
}

} // namespace pwr
