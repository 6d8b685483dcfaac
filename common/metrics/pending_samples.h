#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "common/metrics/data_element.h"
#include "common/values/data.h"

namespace pwr {

class RowTable;

/// A sample of the sampling point being gathered, as the container's own accumulators read it.
struct PendingSample {
    std::uint64_t bits;     // an INT, UINT or REAL; else the place of the kept element
    std::uint64_t duration; // ticks
    std::uint64_t elapsed;  // ticks since the combination's previous sample
    std::uint32_t row;
    DataType type;
};

/// The samples of the sampling point being gathered. A plain number takes 32 bytes; what does not fit (text,
/// ranges, handles, formatters, additional information) keeps a copy of its element, in elements that are
/// assigned into again and again, so that their text keeps its storage. Public elements are made on demand.
class PendingSamples {
public:
    explicit PendingSamples(const RowTable& rows) : m_rows(rows) {}
    PendingSamples(const PendingSamples&) = delete;
    PendingSamples& operator=(const PendingSamples&) = delete;

    /// The element's value must be set; what the element says of duration and row may be older.
    void add(const DataElement& element, std::uint32_t row, std::uint64_t duration, std::uint64_t elapsed) {
        if (m_count == m_samples.size()) {
            m_samples.resize(m_count + m_count / 8 + 16);
        }
        const Data& value = *element.m_value;
        PendingSample& sample = m_samples[m_count];
        sample.duration = duration;
        sample.elapsed = elapsed;
        sample.row = row;
        sample.type = value.getType();
        const bool isPlain = readBits_i(value, sample.bits);
        if (!isPlain || element.m_info != nullptr || value.hasCustomFormatter()) {
            keep_i(element, sample, isPlain);
        }
        ++m_count;
    }

    void clear() {
        m_count = 0;
        m_keptCount = 0;
        m_elementCount = 0;
    }

    [[nodiscard]] std::span<const PendingSample> samples() const {
        return std::span<const PendingSample>(m_samples).first(m_count);
    }
    /// The descriptor under which samples without one are reported.
    void setReportingDescriptor(const DataDescriptor* descriptor) { m_reportingDescriptor = descriptor; }
    /// The value of a sample as it was given, with its formatter.
    [[nodiscard]] Data valueOf(const PendingSample& sample) const;
    /// The same without a copy, for samples that are no plain number.
    [[nodiscard]] const Data& keptValueOf(const PendingSample& sample) const {
        return *m_kept[static_cast<std::size_t>(sample.bits)].element.m_value;
    }

    /// The samples as elements.
    [[nodiscard]] std::span<const DataElement> elements();

    /// Whether bits hold the value itself.
    static bool isPlain(DataType type) { return type >= DataType::INT && type <= DataType::REAL; }

private:
    struct Kept {
        std::size_t position;
        DataElement element;
    };

    static bool readBits_i(const Data& value, std::uint64_t& bits);
    void keep_i(const DataElement& element, PendingSample& sample, bool isPlain);
    [[nodiscard]] const Kept* findKept_i(std::size_t position) const;
    void fill_i(const PendingSample& sample, DataElement& element) const;

    const RowTable& m_rows;
    std::vector<PendingSample> m_samples; // the first m_count count
    std::size_t m_count = 0;
    std::vector<Kept> m_kept; // in the order of their positions; the first m_keptCount count
    std::size_t m_keptCount = 0;
    std::vector<DataElement> m_elements; // the first m_elementCount are made
    std::size_t m_elementCount = 0;
    const DataDescriptor* m_reportingDescriptor = nullptr;
};

inline bool PendingSamples::readBits_i(const Data& value, std::uint64_t& bits) {
    switch (value.getType()) {
    case DataType::INT: {
        std::int64_t number = 0;
        value.toInt(number);
        bits = static_cast<std::uint64_t>(number);
        return true;
    }
    case DataType::UINT: value.toUInt(bits); return true;
    case DataType::REAL: {
        double number = 0.0;
        value.toReal(number);
        bits = std::bit_cast<std::uint64_t>(number);
        return true;
    }
    case DataType::NONE:
    case DataType::INT_RANGE:
    case DataType::UINT_RANGE:
    case DataType::REAL_RANGE:
    case DataType::HANDLE:
    case DataType::STRING: break;
    }
    return false;
}

/// A plain number as a value.
inline Data makeData(DataType type, std::uint64_t bits) {
    if (type == DataType::INT) {
        return Data(static_cast<std::int64_t>(bits));
    }
    return type == DataType::UINT ? Data(bits) : Data(std::bit_cast<double>(bits));
}

} // namespace pwr
