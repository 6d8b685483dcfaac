#include "common/metrics/traced_event_accumulator.h"

#include <algorithm>
#include <map>
#include <string>

#include "common/metrics/distinct_values.h"
#include "common/metrics/metric_fields.h"
#include "common/metrics/metric_types.h"
#include "common/metrics/row_column.h"
#include "common/metrics/sample_counting.h"
#include "common/metrics/summary_table.h"
#include "common/metrics/value_dictionary.h"
#include "common/model/data_descriptor.h"
#include "common/model/entity_handle.h"

namespace pwr {

namespace {

constexpr std::uint32_t SAMPLE_COUNT = 0;
constexpr std::uint32_t EVENT_NAME_COUNTS = 1;
constexpr std::uint32_t SUMMARY_COUNT = 3;
constexpr std::size_t TOP_EVENTS = 10;

struct NameCount {
    std::string name;
    std::uint64_t count = 0;
};

/// Makes one row for each name.
void appendRows(std::vector<SummaryRow>& rows, std::vector<std::uint64_t>& counts, const SummaryRow& subject,
                const std::vector<NameCount>& names) {
    for (const NameCount& name : names) {
        SummaryRow row{subject.entity, subject.descriptor, name.name};
        row.source = static_cast<std::uint32_t>(counts.size());
        row.columnOrder = row.source;
        rows.push_back(row);
        counts.push_back(name.count);
    }
}

int pushCounts(SummaryTable& table, std::vector<SummaryRow>& rows, const std::vector<std::uint64_t>& counts) {
    table.setTextLabel("Event");
    table.addColumn("Count", "", DataType::UINT);
    return table.push(
        rows, [&](const SummaryRow& row, std::size_t) { return SummaryCell(Data(counts[row.source])); });
}

} // namespace

struct TracedEventAccumulator::Impl {
    Impl(const std::vector<std::uint32_t>& selected, Metric& metric)
        : summaries(selected), counting(selected, SAMPLE_COUNT, metric) {}

    void count(std::uint32_t row, const Data& value);
    [[nodiscard]] bool hasRow(std::uint32_t row) const {
        return row < rows.capacity() && rows[row].size() != 0;
    }
    std::vector<NameCount> namesOf(std::uint32_t row) const;
    int emit(Metric& metric, std::uint32_t number);
    int emitNameCounts(Metric& metric, const std::vector<SummaryRow>& subjects, const char* key) const;
    int emitTop(Metric& metric, const SummaryRow& subject, const char* key) const;

    std::vector<std::uint32_t> summaries;
    SampleCounting counting;
    ValueDictionary dictionary;
    RowColumn<DistinctValues> rows; // by row, then by the number of the event's value
};

void TracedEventAccumulator::Impl::count(std::uint32_t row, const Data& value) {
    const std::uint32_t number = dictionary.enter(value);
    DistinctValues& events = rows[row];
    if (events.size() == 0) {
        events.makeRoom();
    }
    DistinctValues::Entry* entry = &events.place(number);
    if (entry->samples == 0) {
        events.makeRoom();
        entry = &events.place(number);
        events.enter(*entry, number);
    }
    ++entry->samples;
}

/// Values of the same text are the same event. In the order of the names.
std::vector<NameCount> TracedEventAccumulator::Impl::namesOf(std::uint32_t row) const {
    std::map<std::string, std::uint64_t> counts;
    rows[row].forEach([&](const DistinctValues::Entry& entry) {
        std::string name;
        dictionary[static_cast<std::uint32_t>(entry.key)].toFormattedString(name);
        counts[name] += entry.samples;
    });
    std::vector<NameCount> names;
    names.reserve(counts.size());
    for (const auto& [name, samples] : counts) {
        names.push_back({name, samples});
    }
    return names;
}

int TracedEventAccumulator::Impl::emitNameCounts(Metric& metric, const std::vector<SummaryRow>& subjects,
                                                 const char* key) const {
    SummaryTable table(metric, key, " Summary: Type Count", nullptr);
    std::vector<SummaryRow> shown;
    std::vector<std::uint64_t> counts;
    for (const SummaryRow& subject : subjects) {
        appendRows(shown, counts, subject, namesOf(subject.source));
    }
    return pushCounts(table, shown, counts);
}

int TracedEventAccumulator::Impl::emitTop(Metric& metric, const SummaryRow& subject, const char* key) const {
    std::vector<NameCount> names = namesOf(subject.source);
    std::stable_sort(names.begin(), names.end(),
                     [](const NameCount& left, const NameCount& right) { return left.count > right.count; });
    names.resize(std::min(names.size(), TOP_EVENTS));
    SummaryTable table(metric, key, " Summary: Top " + std::to_string(TOP_EVENTS) + " Most-Frequent",
                       nullptr);
    std::string name = subject.entity->getQualifiedName();
    if (subject.descriptor != nullptr) {
        name += " and " + subject.descriptor->getName();
    }
    table.setSubject(name);
    std::vector<SummaryRow> shown;
    std::vector<std::uint64_t> counts;
    appendRows(shown, counts, subject, names);
    return pushCounts(table, shown, counts);
}

int TracedEventAccumulator::Impl::emit(Metric& metric, std::uint32_t number) {
    if (number == SAMPLE_COUNT) {
        return counting.finalize(metric);
    }
    const char* key = findMetricTypeRules(Metric::MetricType::TracedEvent)->selectors[number];
    const std::vector<SummaryRow> subjects =
        SummaryTable::containerRows(metric, [this](std::uint32_t row) { return hasRow(row); });
    if (number == EVENT_NAME_COUNTS) {
        return emitNameCounts(metric, subjects, key);
    }
    int result = 0;
    for (const SummaryRow& subject : subjects) {
        result |= emitTop(metric, subject, key);
    }
    return result;
}

TracedEventAccumulator::TracedEventAccumulator(const std::vector<std::uint32_t>& summaries, Metric& metric)
    : m_impl(std::make_unique<Impl>(summaries, metric)) {}

TracedEventAccumulator::~TracedEventAccumulator() = default;

int TracedEventAccumulator::initialize(Metric& metric, const SystemMetadata& metadata) {
    return m_impl->counting.initialize(metric, metadata);
}

int TracedEventAccumulator::processMessage(Metric& metric) {
    if (m_impl->counting.processMessage(metric) != 0) {
        return 1;
    }
    const PendingSamples& samples = MetricAccess::samplesOf(metric);
    m_impl->rows.grow(MetricAccess::rowsOf(metric).size());
    for (const PendingSample& sample : samples.samples()) {
        m_impl->count(sample.row, samples.valueOf(sample));
    }
    return 0;
}

int TracedEventAccumulator::finalize(Metric& metric) {
    int result = 0;
    for (const std::uint32_t number : m_impl->summaries) {
        if (number < SUMMARY_COUNT) {
            result |= m_impl->emit(metric, number);
        }
    }
    return result;
}

} // namespace pwr
