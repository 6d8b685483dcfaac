#include "common/metrics/sampled_residency_accumulator.h"

#include "common/metrics/metric_fields.h"
#include "common/metrics/metric_types.h"
#include "common/metrics/residency_columns.h"
#include "common/metrics/row_column.h"
#include "common/metrics/sample_counting.h"
#include "common/metrics/summary_table.h"
#include "common/plugin/logger.h"

namespace pwr {

namespace {

struct StateTicks {
    double ticks = 0.0;
    std::uint64_t samples = 0;
};

struct EntityDuration {
    double ticks = 0.0;
    std::uint64_t lastPoint = 0; // the number of the last sampling point that was counted
};

constexpr std::uint32_t SAMPLE_COUNT = 0;

// By the summary's number; the first is the summarizer's.
constexpr const ResidencyForm* FORMS[] = {nullptr, &RESIDENCY_PERCENTAGE, &RESIDENCY_TIME,
                                          &RESIDENCY_COMBINED};

} // namespace

struct SampledResidencyAccumulator::Impl {
    Impl(const std::vector<std::uint32_t>& selected, Metric& metric)
        : summaries(selected), counting(selected, SAMPLE_COUNT, metric) {}

    void add(const PendingSample& sample, std::uint32_t entity);
    [[nodiscard]] bool hasRow(std::uint32_t row) const {
        return row < states.capacity() && states[row].samples != 0;
    }
    std::vector<SummaryRow> collectRows(const Metric& metric) const;
    int emit(Metric& metric, std::uint32_t number);

    std::vector<std::uint32_t> summaries;
    SampleCounting counting;
    RowColumn<StateTicks> states;         // by row
    std::vector<EntityDuration> entities; // by the entity's number
    std::uint64_t points = 0;
};

void SampledResidencyAccumulator::Impl::add(const PendingSample& sample, std::uint32_t entity) {
    if (sample.bits > sample.duration) {
        return; // impossible ticks, of which the container warned; they do not make the entity met either
    }
    StateTicks& state = states[sample.row];
    state.ticks += static_cast<double>(sample.bits);
    ++state.samples;
    EntityDuration& duration = entities[entity];
    if (duration.lastPoint != points) {
        duration.lastPoint = points;
        duration.ticks += static_cast<double>(sample.duration);
    }
}

std::vector<SummaryRow> SampledResidencyAccumulator::Impl::collectRows(const Metric& metric) const {
    std::vector<SummaryRow> rows =
        SummaryTable::containerRows(metric, [this](std::uint32_t row) { return hasRow(row); });
    std::erase_if(rows, [](const SummaryRow& row) {
        if (row.descriptor != nullptr && SummaryTable::isResolvable(row)) {
            return false;
        }
        logWarning("WARNING: MetricType::SampledResidency: Descriptor is not valid\n");
        return true;
    });
    return rows;
}

int SampledResidencyAccumulator::Impl::emit(Metric& metric, std::uint32_t number) {
    if (number == SAMPLE_COUNT) {
        return counting.finalize(metric);
    }
    std::vector<SummaryRow> rows = collectRows(metric);
    if (rows.empty()) {
        logWarning("WARNING: An empty residency summary table will be generated for Metric container %s.\n",
                   metric.getName().c_str());
    }
    const ResidencyForm& form = *FORMS[number];
    const char* key = findMetricTypeRules(Metric::MetricType::SampledResidency)->selectors[number];
    SummaryTable table(metric, key, form.titleSuffix, nullptr);
    table.setDescriptorLabel("State");
    addResidencyColumns(table, form);
    const double ticksPerMillisecond = MetricAccess::ticksPerMillisecond(metric);
    const RowTable& containerRows = MetricAccess::rowsOf(metric);
    return table.push(rows, [&](const SummaryRow& row, std::size_t column) {
        const double total = entities[containerRows[row.source].entityNumber].ticks;
        return residencyCell(form, column, states[row.source].ticks, total, ticksPerMillisecond);
    });
}

SampledResidencyAccumulator::SampledResidencyAccumulator(const std::vector<std::uint32_t>& summaries,
                                                         Metric& metric)
    : m_impl(std::make_unique<Impl>(summaries, metric)) {}

SampledResidencyAccumulator::~SampledResidencyAccumulator() = default;

int SampledResidencyAccumulator::initialize(Metric& metric, const SystemMetadata& metadata) {
    return m_impl->counting.initialize(metric, metadata);
}

int SampledResidencyAccumulator::processMessage(Metric& metric) {
    Impl& impl = *m_impl;
    if (impl.counting.processMessage(metric) != 0) {
        return 1;
    }
    const RowTable& rows = MetricAccess::rowsOf(metric);
    impl.states.grow(rows.size());
    impl.entities.resize(rows.entities().size());
    ++impl.points;
    for (const PendingSample& sample : MetricAccess::samplesOf(metric).samples()) {
        if (sample.type != DataType::UINT) {
            logWarning(
                "WARNING: %s: MetricType::SampledResidency metric type is requiredto have values of type "
                "pw_u64_t\n",
                metric.getName().c_str());
            continue;
        }
        impl.add(sample, rows[sample.row].entityNumber);
    }
    return 0;
}

int SampledResidencyAccumulator::finalize(Metric& metric) {
    int result = 0;
    for (const std::uint32_t number : m_impl->summaries) {
        if (number < std::size(FORMS)) {
            result |= m_impl->emit(metric, number);
        }
    }
    return result;
}

} // namespace pwr
