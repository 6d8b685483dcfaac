#include "common/metrics/value_store.h"

#include <algorithm>

#include "common/metrics/metric_fields.h"
#include "common/metrics/prefetch.h"
#include "common/plugin/logger.h"

namespace pwr {

namespace {

void warnWithoutWeight() {
    logWarning("WARNING: SampledValueAccumulator has zero weight!\n");
}

std::uint64_t plainBits(const Data& value) {
    std::int64_t number = 0;
    std::uint64_t bits = 0;
    double real = 0.0;
    switch (value.getType()) {
    case DataType::INT: value.toInt(number); return static_cast<std::uint64_t>(number);
    case DataType::REAL: value.toReal(real); return distinctKey<double>(std::bit_cast<std::uint64_t>(real));
    case DataType::UINT:
    case DataType::NONE:
    case DataType::INT_RANGE:
    case DataType::UINT_RANGE:
    case DataType::REAL_RANGE:
    case DataType::HANDLE:
    case DataType::STRING: break;
    }
    value.toUInt(bits);
    return bits;
}

} // namespace

/// Calls visit with a value of the C++ type that the container's values have.
template <class Visit> void ValueStore::visitType_i(Visit visit) {
    switch (m_type) {
    case DataType::INT: visit(std::int64_t{}); return;
    case DataType::UINT: visit(std::uint64_t{}); return;
    case DataType::REAL: visit(double{}); return;
    case DataType::NONE:
    case DataType::INT_RANGE:
    case DataType::UINT_RANGE:
    case DataType::REAL_RANGE:
    case DataType::HANDLE:
    case DataType::STRING: break;
    }
    visit(NoNumber{});
}

void ValueStore::begin_i(const PendingSamples& samples) {
    if (m_type == DataType::NONE && !samples.samples().empty()) {
        const PendingSample& first = samples.samples().front();
        m_type = first.type;
        m_firstValue = samples.valueOf(first);
    }
}

void ValueStore::grow_i(std::uint32_t rows) {
    if (rows <= m_rowCount) {
        return;
    }
    m_statistics.grow(rows);
    for (std::uint32_t row = m_rowCount; row < rows; ++row) {
        m_statistics[row] = seedStatistics(m_type);
    }
    if (m_keepsDistinct) {
        m_waiting.grow(rows);
        m_buffers.grow(rows);
        m_distinct.grow(rows);
    }
    m_rowCount = rows;
}

/// The finite set may grow while samples come.
void ValueStore::noteFiniteSet_i(const Metric& metric) {
    const std::vector<Data>& values = metric.getFiniteSetValues();
    for (; m_declaredCount < values.size(); ++m_declaredCount) {
        const Data& value = values[m_declaredCount];
        if (value.getType() != m_type) {
            m_declaredOthers.push_back(m_dictionary.enter(value));
        } else {
            m_declaredKeys.push_back(PendingSamples::isPlain(m_type) ? plainBits(value)
                                                                     : m_dictionary.enter(value));
        }
    }
    std::sort(m_declaredKeys.begin(), m_declaredKeys.end());
}

bool ValueStore::isDeclared_i(std::uint64_t key) const {
    return std::binary_search(m_declaredKeys.begin(), m_declaredKeys.end(), key);
}

/// Whether a value that is new to a row gets counts of its own: a declared one always, others while there is room.
/// Those outside a finite set have no column yet, but the set may grow to hold them.
bool ValueStore::mayEnter_i(const Metric& metric, bool isDeclared) {
    if (isDeclared) {
        return true;
    }
    if (m_pairCount < MAX_PAIRS) {
        ++m_pairCount;
        return true;
    }
    if (m_declaredCount == 0) {
        giveUpDistinct_i(metric);
    }
    return false;
}

void ValueStore::giveUpDistinct_i(const Metric& metric) {
    logWarning("WARNING: %s: More than %u distinct values. The tables of counts, sample distribution and "
               "approximated "
               "residency are given up.\n",
               metric.getName().c_str(), static_cast<unsigned>(MAX_PAIRS));
    m_keepsDistinct = false;
}

template <class T>
void ValueStore::drainDistinct_i(const Metric& metric, std::uint32_t row,
                                 std::span<const BufferedSample> samples) {
    DistinctValues& distinct = m_distinct[row];
    if (distinct.size() == 0) {
        distinct.makeRoom();
    }
    for (const BufferedSample& sample : samples) {
        const std::uint64_t key = distinctKey<T>(sample.bits);
        DistinctValues::Entry* entry = &distinct.place(key);
        if (entry->samples == 0) {
            if (!mayEnter_i(metric, isDeclared_i(key))) {
                if (!m_keepsDistinct) {
                    return;
                }
                continue;
            }
            distinct.makeRoom();
            entry = &distinct.place(key);
            distinct.enter(*entry, key);
        }
        ++entry->samples;
        entry->duration += sample.duration;
    }
}

template <class T> void ValueStore::drain_i(const Metric& metric, std::uint32_t row) {
    const std::span<const BufferedSample> samples(m_buffers[row].data(), m_waiting[row]);
    m_waiting[row] = 0;
    if (samples.empty()) {
        return;
    }
    {
        StatisticsRun<T> run(m_statistics[row]);
        for (const BufferedSample& sample : samples) {
            run.add(sample.bits, sample.duration);
        }
    }
    if (m_keepsDistinct) {
        drainDistinct_i<T>(metric, row, samples);
    }
}

template <class T> void ValueStore::drainAll_i(const Metric& metric) {
    const auto rows = static_cast<std::uint32_t>(std::min<std::size_t>(m_rowCount, m_waiting.capacity()));
    for (std::uint32_t row = 0; row < rows; ++row) {
        drain_i<T>(metric, row);
    }
}

/// A value of another type than the container's: it compares by its type and cannot be added, so it leaves
/// smallest, largest and sum alone.
void ValueStore::addOther_i(const Metric& metric, const PendingSamples& samples,
                            const PendingSample& sample) {
    if (m_keepsDistinct) {
        // In the order of arrival: the sums of weights depend on it.
        visitType_i([&](auto type) { drain_i<decltype(type)>(metric, sample.row); });
    }
    const Data value = samples.valueOf(sample);
    ValueStatistics& row = m_statistics[sample.row];
    ++row.count;
    row.duration += sample.duration;
    if (PendingSamples::isPlain(sample.type)) {
        const Data real = Data::convertToReal(&value);
        const double weight = static_cast<double>(sample.duration);
        double number = 0.0;
        real.toReal(number);
        row.weightedSum += number * weight;
        row.totalWeight += weight;
    }
    if (!m_keepsDistinct) {
        return;
    }
    const std::uint32_t known = m_dictionary.find(value);
    const bool isNew = known == ValueDictionary::NONE || !m_others.contains({sample.row, known});
    const bool isDeclared =
        std::find(m_declaredOthers.begin(), m_declaredOthers.end(), known) != m_declaredOthers.end();
    if (isNew && !mayEnter_i(metric, isDeclared)) {
        return;
    }
    Occurrences& occurrences = m_others[{sample.row, m_dictionary.enter(value)}];
    ++occurrences.samples;
    occurrences.duration += sample.duration;
}

template <class T>
std::uint64_t ValueStore::wordOf_i(const PendingSamples& samples, const PendingSample& sample) {
    if constexpr (std::is_same_v<T, NoNumber>) {
        if (!m_keepsDistinct) {
            return 0;
        }
        const Data& value = samples.keptValueOf(sample);
        return m_pairCount < MAX_PAIRS ? m_dictionary.enter(value) : m_dictionary.find(value);
    } else {
        return sample.bits;
    }
}

/// Returns how many samples were taken in: all, unless the distinct values were given up on the way.
template <class T>
std::size_t ValueStore::addBuffered_i(const Metric& metric, const PendingSamples& samples) {
    const std::span<const PendingSample> all = samples.samples();
    const std::size_t fetched = m_rowCount >= MANY_ROWS && all.size() > AHEAD ? all.size() - AHEAD : 0;
    for (std::size_t position = 0; position < all.size(); ++position) {
        if (position < fetched) {
            const std::uint32_t row = all[position + AHEAD].row;
            prefetchForWrite(&m_buffers[row][m_waiting[row]]);
        }
        const PendingSample& sample = all[position];
        if (sample.duration == 0) {
            warnWithoutWeight();
        }
        if (sample.type != m_type) {
            addOther_i(metric, samples, sample);
        } else {
            std::uint8_t& waiting = m_waiting[sample.row];
            m_buffers[sample.row][waiting] = {wordOf_i<T>(samples, sample), sample.duration};
            if (++waiting != BUFFER_SIZE) {
                continue;
            }
            drain_i<T>(metric, sample.row);
        }
        if (!m_keepsDistinct) {
            return position + 1;
        }
    }
    return all.size();
}

template <class T>
void ValueStore::addDirect_i(const Metric& metric, const PendingSamples& samples, std::size_t from) {
    const std::span<const PendingSample> all = samples.samples();
    const std::size_t fetched = m_rowCount >= MANY_ROWS && all.size() > AHEAD ? all.size() - AHEAD : 0;
    for (std::size_t position = from; position < all.size(); ++position) {
        if (position < fetched) {
            prefetchForWrite(&m_statistics[all[position + AHEAD].row]);
        }
        const PendingSample& sample = all[position];
        if (sample.duration == 0) {
            warnWithoutWeight();
        }
        if (sample.type != m_type) {
            addOther_i(metric, samples, sample);
        } else {
            StatisticsRun<T>(m_statistics[sample.row]).add(sample.bits, sample.duration);
        }
    }
}

template <class T> void ValueStore::addAll_i(const Metric& metric, const PendingSamples& samples) {
    if (!m_keepsDistinct) {
        addDirect_i<T>(metric, samples, 0);
        return;
    }
    const std::size_t taken = addBuffered_i<T>(metric, samples);
    if (!m_keepsDistinct) {
        drainAll_i<T>(metric);
        m_waiting.clear();
        m_buffers.clear();
        m_distinct.clear();
        m_others.clear();
        addDirect_i<T>(metric, samples, taken);
    }
}

void ValueStore::add(const Metric& metric, const PendingSamples& samples) {
    begin_i(samples);
    grow_i(MetricAccess::rowsOf(metric).size());
    if (m_keepsDistinct && m_declaredCount != metric.getFiniteSetValues().size()) {
        noteFiniteSet_i(metric);
    }
    visitType_i([&](auto type) { addAll_i<decltype(type)>(metric, samples); });
}

void ValueStore::finish(const Metric& metric) {
    visitType_i([&](auto type) { drainAll_i<decltype(type)>(metric); });
}

std::vector<Data> ValueStore::distinctValues() const {
    std::vector<Data> values;
    for (std::uint32_t row = 0; row < m_rowCount; ++row) {
        m_distinct[row].forEach([&](const DistinctValues::Entry& entry) {
            values.push_back(PendingSamples::isPlain(m_type)
                                 ? makeData(m_type, entry.key)
                                 : m_dictionary[static_cast<std::uint32_t>(entry.key)]);
        });
    }
    for (const auto& [key, occurrences] : m_others) {
        values.push_back(m_dictionary[key.second]);
    }
    const DataOrder order;
    std::sort(values.begin(), values.end(), order);
    const auto isSame = [&](const Data& left, const Data& right) { return !order(left, right); };
    values.erase(std::unique(values.begin(), values.end(), isSame), values.end());
    return values;
}

ValueStore::Occurrences ValueStore::occurrences(std::uint32_t row, const Data& value) const {
    if (value.getType() == m_type) {
        const std::uint64_t key =
            PendingSamples::isPlain(m_type) ? plainBits(value) : m_dictionary.find(value);
        const DistinctValues::Entry* entry = m_distinct[row].find(key);
        return entry != nullptr ? Occurrences{entry->samples, entry->duration} : Occurrences{};
    }
    const auto found = m_others.find({row, m_dictionary.find(value)});
    return found != m_others.end() ? found->second : Occurrences{};
}

std::string ValueStore::textOf(const Data& value) const {
    std::string text;
    Data formatted = m_firstValue;
    if (value.hasCustomFormatter() || value.getType() != m_type || formatted.setValue(value) != 0) {
        value.toFormattedString(text);
    } else {
        formatted.toFormattedString(text);
    }
    return text;
}

} // namespace pwr
