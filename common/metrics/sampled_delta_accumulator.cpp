#include "common/metrics/sampled_delta_accumulator.h"

#include <optional>

#include "common/metrics/metric_fields.h"
#include "common/metrics/metric_types.h"
#include "common/metrics/row_column.h"
#include "common/metrics/sample_counting.h"
#include "common/metrics/summary_table.h"
#include "common/plugin/logger.h"
#include "common/values/quantity.h"

namespace pwr {

namespace {

/// Most totals are of the container's type and plain numbers; those are kept as words.
struct DeltaRow {
    std::uint64_t total = 0;
    double duration = 0.0;
    bool hasSamples = false;
};

constexpr std::uint32_t SAMPLE_COUNT = 0;
constexpr std::uint32_t AVERAGE_RATE_TOTAL = 1;
constexpr std::uint32_t SUMMARY_COUNT = 3;

} // namespace

struct SampledDeltaAccumulator::Impl {
    Impl(const std::vector<std::uint32_t>& selected, Metric& metric)
        : summaries(selected), counting(selected, SAMPLE_COUNT, metric) {}

    void readRateConversion(const Metric& metric);
    void grow(std::uint32_t count);
    void add(const PendingSamples& samples, const PendingSample& sample);
    void addSlowly(const Data& value, std::uint32_t row);
    [[nodiscard]] Data totalOf(std::uint32_t row) const;
    [[nodiscard]] bool hasRow(std::uint32_t row) const { return row < rowCount && rows[row].hasSamples; }
    SummaryCell rateOf(const Metric& metric, const SummaryRow& row) const;
    std::vector<SummaryRow> collectRows(const Metric& metric) const;
    int emit(Metric& metric, std::uint32_t number);

    std::vector<std::uint32_t> summaries;
    SampleCounting counting;
    bool isInitialized = false;
    bool hasRates = false;
    const Quantity* rateQuantity = nullptr;
    double rateFactor = 1.0;

    DataType type = DataType::NONE; // the first sample's
    std::uint32_t rowCount = 0;
    RowColumn<DeltaRow> rows;
    RowColumn<Data> totals; // only for totals that are no plain numbers
};

void SampledDeltaAccumulator::Impl::readRateConversion(const Metric& metric) {
    isInitialized = true;
    const Quantity* quantity = metric.getQuantity();
    hasRates = quantity != nullptr && quantity->getRateConversion(rateQuantity, rateFactor) == 0;
    if (!hasRates) {
        logWarning("WARNING: Quantity and rate conversion are not specified. Disabling rate calculations.\n");
    }
}

void SampledDeltaAccumulator::Impl::grow(std::uint32_t count) {
    rows.grow(count);
    if (!PendingSamples::isPlain(type)) {
        totals.grow(count);
        for (; rowCount < count; ++rowCount) {
            totals[rowCount] = Data(type);
            totals[rowCount].initZero();
        }
    }
    rowCount = count;
}

Data SampledDeltaAccumulator::Impl::totalOf(std::uint32_t row) const {
    return PendingSamples::isPlain(type) ? makeData(type, rows[row].total) : totals[row];
}

/// Leaves it to Data what may be added to what, and what to say otherwise.
void SampledDeltaAccumulator::Impl::addSlowly(const Data& value, std::uint32_t row) {
    if (!PendingSamples::isPlain(type)) {
        totals[row].addValue(value);
        return;
    }
    Data total = totalOf(row);
    if (total.addValue(value) != 0) {
        return;
    }
    double real = 0.0;
    if (type == DataType::REAL && total.toReal(real) == 0) {
        rows[row].total = std::bit_cast<std::uint64_t>(real);
    }
}

void SampledDeltaAccumulator::Impl::add(const PendingSamples& samples, const PendingSample& sample) {
    DeltaRow& row = rows[sample.row];
    row.hasSamples = true;
    row.duration += static_cast<double>(sample.duration);
    if (sample.type != type || !PendingSamples::isPlain(type)) {
        addSlowly(samples.valueOf(sample), sample.row);
    } else if (type == DataType::REAL) {
        row.total = std::bit_cast<std::uint64_t>(std::bit_cast<double>(row.total) +
                                                 std::bit_cast<double>(sample.bits));
    } else {
        row.total += sample.bits; // wraps, as sums of integers do
    }
}

SummaryCell SampledDeltaAccumulator::Impl::rateOf(const Metric& metric, const SummaryRow& row) const {
    if (!hasRates) {
        return std::nullopt;
    }
    const Data total = totalOf(row.source);
    const Data real = Data::convertToReal(&total);
    double amount = 0.0;
    if (real.getType() != DataType::REAL) {
        logWarning("WARNING: couldn't convert %s to real!\n", SummaryTable::nameOf(row).c_str());
        return std::nullopt;
    }
    real.toReal(amount);
    const double ticksPerSecond = MetricAccess::ticksPerMillisecond(metric) * 1000.0;
    if (!(ticksPerSecond > 0.0)) {
        return std::nullopt; // without a clock there is no second
    }
    const double duration = rows[row.source].duration;
    // Sums beyond 64 bits have no tick count to go back to.
    const double ticks =
        duration < 0x1p64 ? static_cast<double>(static_cast<std::uint64_t>(duration)) : duration;
    return realCell(amount * (rateFactor / (ticks / ticksPerSecond)));
}

std::vector<SummaryRow> SampledDeltaAccumulator::Impl::collectRows(const Metric& metric) const {
    std::vector<SummaryRow> shown =
        SummaryTable::containerRows(metric, [this](std::uint32_t row) { return hasRow(row); });
    std::erase_if(shown, [](const SummaryRow& row) {
        if (SummaryTable::isResolvable(row)) {
            return false;
        }
        logWarning("WARNING: MetricType::SampledDelta: Descriptor is not valid\n");
        return true;
    });
    return shown;
}

int SampledDeltaAccumulator::Impl::emit(Metric& metric, std::uint32_t number) {
    if (number == SAMPLE_COUNT) {
        return counting.finalize(metric);
    }
    const bool showsRate = number == AVERAGE_RATE_TOTAL;
    const char* key = findMetricTypeRules(Metric::MetricType::SampledDelta)->selectors[number];
    SummaryTable table(metric, key, showsRate ? " Summary: Average Rate and Total" : " Summary: Total",
                       showsRate && !hasRates ? nullptr : metric.getQuantity()); // a rate has another unit
    if (showsRate) {
        table.addColumn("Average Rate", " Average Rate", DataType::REAL, rateQuantity);
    }
    table.addColumn("Total", " Total", type == DataType::NONE ? DataType::REAL : type, metric.getQuantity());
    std::vector<SummaryRow> shown = collectRows(metric);
    return table.push(shown, [&](const SummaryRow& row, std::size_t column) -> SummaryCell {
        if (showsRate && column == 0) {
            return rateOf(metric, row);
        }
        return dataCell(totalOf(row.source));
    });
}

SampledDeltaAccumulator::SampledDeltaAccumulator(const std::vector<std::uint32_t>& summaries, Metric& metric)
    : m_impl(std::make_unique<Impl>(summaries, metric)) {}

SampledDeltaAccumulator::~SampledDeltaAccumulator() = default;

int SampledDeltaAccumulator::initialize(Metric& metric, const SystemMetadata& metadata) {
    m_impl->readRateConversion(metric);
    return m_impl->counting.initialize(metric, metadata);
}

int SampledDeltaAccumulator::processMessage(Metric& metric) {
    Impl& impl = *m_impl;
    if (impl.counting.processMessage(metric) != 0) {
        return 1;
    }
    const PendingSamples& samples = MetricAccess::samplesOf(metric);
    if (impl.type == DataType::NONE && !samples.samples().empty()) {
        impl.type = samples.samples().front().type;
    }
    impl.grow(MetricAccess::rowsOf(metric).size());
    for (const PendingSample& sample : samples.samples()) {
        impl.add(samples, sample);
    }
    return 0;
}

int SampledDeltaAccumulator::finalize(Metric& metric) {
    if (!m_impl->isInitialized) {
        m_impl->readRateConversion(metric);
    }
    int result = 0;
    for (const std::uint32_t number : m_impl->summaries) {
        if (number < SUMMARY_COUNT) {
            result |= m_impl->emit(metric, number);
        }
    }
    return result;
}

} // namespace pwr
