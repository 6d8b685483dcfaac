#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "common/metrics/distinct_values.h"
#include "common/metrics/pending_samples.h"
#include "common/metrics/row_column.h"
#include "common/metrics/value_dictionary.h"
#include "common/metrics/value_statistics.h"
#include "common/values/data.h"

namespace pwr {

class Metric;

/// The numbers of SampledValueAccumulator: statistics of each row and, where they are wanted, its distinct values.
///
/// The type of the first value decides how numbers are kept: as columns of raw words. Values that are no plain
/// numbers are kept by their number in a dictionary, and so are numbers of another type than the first.
///
/// Where distinct values are wanted, a row's samples wait in a buffer and enter statistics and counts in one go:
/// a row's memory is then fetched once in 32 samples, which is what counts when rows outgrow the caches. Without
/// them a sample touches one line of memory anyway, and goes straight into the statistics.
class ValueStore {
public:
    struct Occurrences {
        std::uint64_t samples = 0;
        std::uint64_t duration = 0;
    };

    explicit ValueStore(bool keepsDistinct) : m_keepsDistinct(keepsDistinct) {}

    /// Takes in a sampling point; warns of every sample without weight.
    void add(const Metric& metric, const PendingSamples& samples);
    /// Takes in what still waits; to be called before anything is read.
    void finish(const Metric& metric);

    /// NONE before the first value.
    [[nodiscard]] DataType type() const { return m_type; }
    [[nodiscard]] bool hasRow(std::uint32_t row) const {
        return row < m_rowCount && m_statistics[row].count != 0;
    }
    [[nodiscard]] const ValueStatistics& statistics(std::uint32_t row) const { return m_statistics[row]; }

    /// False when they were not wanted or became too many.
    [[nodiscard]] bool keepsDistinct() const { return m_keepsDistinct; }
    /// All values seen, in their order.
    [[nodiscard]] std::vector<Data> distinctValues() const;
    [[nodiscard]] Occurrences occurrences(std::uint32_t row, const Data& value) const;
    /// As the samples' own formatter writes it, if they came with one.
    [[nodiscard]] std::string textOf(const Data& value) const;

private:
    static constexpr std::uint8_t BUFFER_SIZE = 32;
    static constexpr std::uint32_t MAX_PAIRS = 65536;
    /// With so many rows their memory is fetched ahead, because it does not stay in the caches.
    static constexpr std::uint32_t MANY_ROWS = 2048;
    static constexpr std::size_t AHEAD = 12;

    struct BufferedSample {
        std::uint64_t bits;
        std::uint64_t duration;
    };
    using Buffer = std::array<BufferedSample, BUFFER_SIZE>;

    void begin_i(const PendingSamples& samples);
    void grow_i(std::uint32_t rows);
    void noteFiniteSet_i(const Metric& metric);
    template <class T> void addAll_i(const Metric& metric, const PendingSamples& samples);
    template <class T> std::size_t addBuffered_i(const Metric& metric, const PendingSamples& samples);
    template <class T>
    void addDirect_i(const Metric& metric, const PendingSamples& samples, std::size_t from);
    template <class T> void drain_i(const Metric& metric, std::uint32_t row);
    template <class T>
    void drainDistinct_i(const Metric& metric, std::uint32_t row, std::span<const BufferedSample> samples);
    template <class T> void drainAll_i(const Metric& metric);
    void addOther_i(const Metric& metric, const PendingSamples& samples, const PendingSample& sample);
    /// The word that stands for a sample of the container's type.
    template <class T> std::uint64_t wordOf_i(const PendingSamples& samples, const PendingSample& sample);
    bool mayEnter_i(const Metric& metric, bool isDeclared);
    bool isDeclared_i(std::uint64_t key) const;
    void giveUpDistinct_i(const Metric& metric);
    template <class Visit> void visitType_i(Visit visit);

    DataType m_type = DataType::NONE;
    Data m_firstValue;
    bool m_keepsDistinct;
    std::uint32_t m_rowCount = 0;
    std::uint32_t m_pairCount = 0; // distinct values over all rows, declared ones apart
    RowColumn<ValueStatistics> m_statistics;
    RowColumn<std::uint8_t> m_waiting;
    RowColumn<Buffer, 4> m_buffers;
    RowColumn<DistinctValues> m_distinct;
    ValueDictionary m_dictionary;
    std::map<std::pair<std::uint32_t, std::uint32_t>, Occurrences> m_others; // by row and dictionary number
    std::size_t m_declaredCount = 0;
    std::vector<std::uint64_t> m_declaredKeys; // of the finite set, sorted
    std::vector<std::uint32_t> m_declaredOthers;
};

} // namespace pwr
