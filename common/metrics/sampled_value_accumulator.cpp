#include "common/metrics/sampled_value_accumulator.h"

#include <algorithm>
#include <array>
#include <span>

#include "common/metrics/metric_fields.h"
#include "common/metrics/metric_types.h"
#include "common/metrics/sample_counting.h"
#include "common/metrics/summary_table.h"
#include "common/metrics/value_store.h"
#include "common/plugin/logger.h"

namespace pwr {

namespace {

using Occurrences = ValueStore::Occurrences;

/// A column of the statistics tables; REAL where the type does not follow the values.
struct StatisticsColumn {
    const char* title;
    bool isReal;
    SummaryCell (*cell)(const ValueStatistics& row, DataType type);
};

double asDouble(DataType type, std::uint64_t bits) {
    if (type == DataType::REAL) {
        return std::bit_cast<double>(bits);
    }
    return type == DataType::INT ? static_cast<double>(static_cast<std::int64_t>(bits))
                                 : static_cast<double>(bits);
}

/// A row of values that are all of another type has kept its seeds, which are no measurement.
bool hasExtremes(const ValueStatistics& row, DataType type) {
    const ValueStatistics seeds = seedStatistics(type);
    return type == DataType::REAL ? row.minimum != seeds.minimum || row.maximum != seeds.maximum
                                  : !(makeData(type, row.maximum) < makeData(type, row.minimum));
}

SummaryCell extreme(const ValueStatistics& row, DataType type, std::uint64_t bits) {
    return hasExtremes(row, type) ? dataCell(makeData(type, bits)) : std::nullopt;
}

constexpr StatisticsColumn STATISTICS_COLUMNS[] = {
    {"Min", false, [](const ValueStatistics& row, DataType type) { return extreme(row, type, row.minimum); }},
    {"Max", false, [](const ValueStatistics& row, DataType type) { return extreme(row, type, row.maximum); }},
    {"Avg", true,
     [](const ValueStatistics& row, DataType type) {
         return realCell(asDouble(type, row.sum) / static_cast<double>(row.count));
     }},
    {"Time-weighted Avg", true,
     [](const ValueStatistics& row, DataType) { return realCell(row.weightedSum / row.totalWeight); }},
};

SummaryCell percentage(std::uint64_t part, std::uint64_t whole) {
    return realCell(static_cast<double>(part) / static_cast<double>(whole) * 100.0);
}

SummaryCell countCell(const Occurrences& value, const ValueStatistics&) {
    return Data(value.samples);
}

SummaryCell distributionCell(const Occurrences& value, const ValueStatistics& row) {
    return percentage(value.samples, row.count);
}

SummaryCell residencyCell(const Occurrences& value, const ValueStatistics& row) {
    return percentage(value.duration, row.duration);
}

/// A summary by its number: a statistics table of some columns, or one column for each value.
struct ValueSummary {
    const char* titleSuffix;
    std::size_t statisticsColumns;
    const char* valueSuffix;
    DataType valueType;
    SummaryCell (*valueCell)(const Occurrences& value, const ValueStatistics& row);
};

constexpr ValueSummary SUMMARIES[] = {
    {nullptr, 0, nullptr, DataType::NONE, nullptr}, // the summarizer's
    {" Summary - Sampled: Min/Max/Avg", 4, nullptr, DataType::NONE, nullptr},
    {" Summary - Sampled: Counts", 0, "", DataType::UINT, countCell},
    {" Summary - Sampled: Sample Distribution", 0, " (%)", DataType::REAL, distributionCell},
    {" Summary - Sampled: Min/Max", 2, nullptr, DataType::NONE, nullptr},
    {" Summary - Sampled: Approximated Residency (Percentage)", 0, " (%)", DataType::REAL, residencyCell},
};

/// Rows times values: beyond this a table is no report any more, and its cells would not fit into memory.
constexpr std::size_t MAX_CELLS = std::size_t{1} << 22;

bool wantsDistinct(const std::vector<std::uint32_t>& summaries) {
    return std::any_of(summaries.begin(), summaries.end(), [](std::uint32_t number) {
        return number < std::size(SUMMARIES) && SUMMARIES[number].valueCell != nullptr;
    });
}

} // namespace

struct SampledValueAccumulator::Impl {
    Impl(const std::vector<std::uint32_t>& selected, Metric& metric)
        : summaries(selected), counting(selected, SAMPLE_COUNT, metric), store(wantsDistinct(selected)) {}

    static constexpr std::uint32_t SAMPLE_COUNT = 0;

    int emit(Metric& metric, std::uint32_t number);
    int emitStatistics(Metric& metric, SummaryTable& table, const ValueSummary& summary);
    int emitValues(Metric& metric, SummaryTable& table, const ValueSummary& summary);
    std::vector<SummaryRow> rowsOf(const Metric& metric) const {
        return SummaryTable::containerRows(metric, [this](std::uint32_t row) { return store.hasRow(row); });
    }

    std::vector<std::uint32_t> summaries;
    SampleCounting counting;
    ValueStore store;
};

int SampledValueAccumulator::Impl::emitStatistics(Metric& metric, SummaryTable& table,
                                                  const ValueSummary& summary) {
    const DataType type = store.type();
    if (!PendingSamples::isPlain(type)) {
        logWarning("WARNING: Unable to provide min/max/avg summary for non-numeric data.\n");
        return 0;
    }
    const std::span<const StatisticsColumn> columns =
        std::span<const StatisticsColumn>(STATISTICS_COLUMNS).first(summary.statisticsColumns);
    for (const StatisticsColumn& column : columns) {
        table.addColumn(column.title, std::string(" ") + column.title, column.isReal ? DataType::REAL : type);
    }
    std::vector<SummaryRow> rows = rowsOf(metric);
    return table.push(rows, [&](const SummaryRow& row, std::size_t column) {
        return columns[column].cell(store.statistics(row.source), type);
    });
}

int SampledValueAccumulator::Impl::emitValues(Metric& metric, SummaryTable& table,
                                              const ValueSummary& summary) {
    if (!store.keepsDistinct()) {
        return 0; // given up, and said so
    }
    std::vector<SummaryRow> rows = rowsOf(metric);
    std::vector<Data> values = metric.getFiniteSetValues();
    if (values.empty()) {
        values = store.distinctValues();
        if (values.size() * rows.size() > MAX_CELLS) {
            logWarning("WARNING: %s: A table of %llu rows and %llu values is too large and is left out.\n",
                       metric.getName().c_str(), static_cast<unsigned long long>(rows.size()),
                       static_cast<unsigned long long>(values.size()));
            return 0;
        }
    }
    for (const Data& value : values) {
        const std::string title = store.textOf(value) + summary.valueSuffix;
        table.addColumn(title, " " + title, summary.valueType);
    }
    return table.push(rows, [&](const SummaryRow& row, std::size_t column) {
        return summary.valueCell(store.occurrences(row.source, values[column]), store.statistics(row.source));
    });
}

int SampledValueAccumulator::Impl::emit(Metric& metric, std::uint32_t number) {
    if (number == SAMPLE_COUNT) {
        return counting.finalize(metric);
    }
    const ValueSummary& summary = SUMMARIES[number];
    const char* key = findMetricTypeRules(Metric::MetricType::SampledValue)->selectors[number];
    const bool isStatistics = summary.valueCell == nullptr;
    SummaryTable table(metric, key, summary.titleSuffix, isStatistics ? metric.getQuantity() : nullptr);
    return isStatistics ? emitStatistics(metric, table, summary) : emitValues(metric, table, summary);
}

SampledValueAccumulator::SampledValueAccumulator(const std::vector<std::uint32_t>& summaries, Metric& metric)
    : m_impl(std::make_unique<Impl>(summaries, metric)) {}

SampledValueAccumulator::~SampledValueAccumulator() = default;

int SampledValueAccumulator::initialize(Metric& metric, const SystemMetadata& metadata) {
    return m_impl->counting.initialize(metric, metadata);
}

int SampledValueAccumulator::processMessage(Metric& metric) {
    if (m_impl->counting.processMessage(metric) != 0) {
        return 1;
    }
    m_impl->store.add(metric, MetricAccess::samplesOf(metric));
    return 0;
}

int SampledValueAccumulator::finalize(Metric& metric) {
    m_impl->store.finish(metric);
    int result = 0;
    for (const std::uint32_t number : m_impl->summaries) {
        if (number < std::size(SUMMARIES)) {
            result |= m_impl->emit(metric, number);
        }
    }
    return result;
}

} // namespace pwr
