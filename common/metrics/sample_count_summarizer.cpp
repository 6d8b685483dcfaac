#include "common/metrics/sample_count_summarizer.h"

#include <algorithm>
#include <limits>

#include "common/metrics/metric_fields.h"
#include "common/metrics/metric_types.h"
#include "common/metrics/row_column.h"
#include "common/metrics/summary_table.h"

namespace pwr {

namespace {

/// The intervals between a row's samples, in ticks.
struct Intervals {
    alignas(32) std::uint64_t shortest = std::numeric_limits<std::uint64_t>::max();
    std::uint64_t longest = 0;
    std::uint64_t sum = 0;
    std::uint64_t count = 0;
};

struct IntervalColumn {
    const char* title;
    double (*ticks)(const Intervals& row);
};

constexpr IntervalColumn INTERVAL_COLUMNS[] = {
    {"Min sampling interval (msec)", [](const Intervals& row) { return static_cast<double>(row.shortest); }},
    {"Max sampling interval (msec)", [](const Intervals& row) { return static_cast<double>(row.longest); }},
    {"Avg sampling interval (msec)",
     [](const Intervals& row) { return static_cast<double>(row.sum) / static_cast<double>(row.count); }},
};

constexpr const char* COUNT_TITLE = "Total # of samples";

} // namespace

struct SampleCountSummarizer::Impl {
    RowColumn<Intervals> rows;

    [[nodiscard]] bool hasRow(std::uint32_t row) const {
        return row < rows.capacity() && rows[row].count != 0;
    }
};

SampleCountSummarizer::SampleCountSummarizer(Metric&) : m_impl(std::make_unique<Impl>()) {}

SampleCountSummarizer::~SampleCountSummarizer() = default;

int SampleCountSummarizer::initialize(Metric&, const SystemMetadata&) {
    return 0;
}

int SampleCountSummarizer::processMessage(Metric& metric) {
    RowColumn<Intervals>& rows = m_impl->rows;
    rows.grow(MetricAccess::rowsOf(metric).size());
    for (const PendingSample& sample : MetricAccess::samplesOf(metric).samples()) {
        Intervals& row = rows[sample.row];
        row.shortest = std::min(row.shortest, sample.elapsed);
        row.longest = std::max(row.longest, sample.elapsed);
        row.sum += sample.elapsed;
        ++row.count;
    }
    return 0;
}

int SampleCountSummarizer::finalize(Metric& metric) {
    SummaryTable table(metric, "SAMPLE-COUNT", MetricAccess::of(metric).rules->sampleCountTitle, nullptr);
    table.addColumn(COUNT_TITLE, std::string(" ") + COUNT_TITLE, DataType::UINT);
    for (const IntervalColumn& column : INTERVAL_COLUMNS) {
        table.addColumn(column.title, std::string(" ") + column.title, DataType::REAL);
    }
    const double ticksPerMillisecond = MetricAccess::ticksPerMillisecond(metric);
    std::vector<SummaryRow> rows =
        SummaryTable::containerRows(metric, [this](std::uint32_t row) { return m_impl->hasRow(row); });
    return table.push(rows, [&](const SummaryRow& row, std::size_t column) -> SummaryCell {
        const Intervals& intervals = m_impl->rows[row.source];
        if (column == 0) {
            return Data(intervals.count);
        }
        return realCell(INTERVAL_COLUMNS[column - 1].ticks(intervals) / ticksPerMillisecond);
    });
}

} // namespace pwr
