#include "common/metrics/traced_transition_accumulator.h"

#include <algorithm>

#include "common/metadata/system_metadata.h"
#include "common/metrics/metric_fields.h"
#include "common/metrics/metric_types.h"
#include "common/metrics/residency_columns.h"
#include "common/metrics/row_column.h"
#include "common/metrics/summary_table.h"
#include "common/metrics/value_dictionary.h"
#include "common/model/entity_handle.h"

namespace pwr {

namespace {

struct StateTime {
    std::uint64_t ticks = 0;
    std::uint64_t entries = 0;
};

/// The states of one entity, by the number of the state's value.
struct EntityStates {
    std::vector<StateTime> states;
    std::uint64_t ticks = 0;

    StateTime& operator[](std::uint32_t state) {
        if (state >= states.size()) {
            states.resize(state + std::size_t{1});
        }
        return states[state];
    }
    [[nodiscard]] StateTime get(std::uint32_t state) const {
        return state < states.size() ? states[state] : StateTime{};
    }
    /// Without any time, the only state that was ever entered is where the entity was all along.
    [[nodiscard]] bool isOnlyState(std::uint32_t state) const {
        const auto entered = [](const StateTime& time) { return time.entries != 0; };
        return get(state).entries != 0 && std::count_if(states.begin(), states.end(), entered) == 1;
    }
};

// By the summary's number; the one without a form counts entries.
constexpr const ResidencyForm* FORMS[] = {&RESIDENCY_PERCENTAGE, &RESIDENCY_TIME, nullptr,
                                          &RESIDENCY_COMBINED};

} // namespace

struct TracedTransitionAccumulator::Impl {
    static constexpr std::uint32_t UNKNOWN = ValueDictionary::NONE;

    struct CurrentState {
        std::uint32_t state = UNKNOWN;
    };

    void enter(const RowTable& rows, const PendingSample& sample, const Data& value);
    void charge(std::uint32_t entity, std::uint32_t state, std::uint64_t ticks);
    void chargeRest(const Metric& metric);
    std::vector<std::uint32_t> listStates(const Metric& metric);
    std::vector<SummaryRow> makeRows(const Metric& metric, bool withAllStates);
    int emit(Metric& metric, std::uint32_t number);

    std::vector<std::uint32_t> summaries;
    ValueDictionary dictionary;
    RowColumn<CurrentState> current;    // by row
    std::vector<EntityStates> entities; // by the entity's number
    std::vector<SummaryRow> rows;       // of the tables that list entities and states
    bool isFinished = false;
};

void TracedTransitionAccumulator::Impl::charge(std::uint32_t entity, std::uint32_t state,
                                               std::uint64_t ticks) {
    if (state != UNKNOWN) {
        entities[entity][state].ticks += ticks;
        entities[entity].ticks += ticks;
    }
}

void TracedTransitionAccumulator::Impl::enter(const RowTable& containerRows, const PendingSample& sample,
                                              const Data& value) {
    const std::uint32_t entity = containerRows[sample.row].entityNumber;
    std::uint32_t& state = current[sample.row].state;
    charge(entity, state, sample.duration);
    state = dictionary.enter(value);
    ++entities[entity][state].entries;
}

/// What lies between the last changes and the end of the collection, when that is known.
void TracedTransitionAccumulator::Impl::chargeRest(const Metric& metric) {
    const std::uint64_t stop = metric.getSystemMetadata().stopTSC;
    const RowTable& containerRows = MetricAccess::rowsOf(metric);
    for (std::uint32_t row = 0; row < containerRows.size() && row < current.capacity(); ++row) {
        if (stop > containerRows[row].lastTimestamp) {
            charge(containerRows[row].entityNumber, current[row].state,
                   stop - containerRows[row].lastTimestamp);
        }
    }
}

/// The declared states in their order, else those seen in the order of their values.
std::vector<std::uint32_t> TracedTransitionAccumulator::Impl::listStates(const Metric& metric) {
    std::vector<std::uint32_t> states;
    for (const Data& value : metric.getFiniteSetValues()) {
        states.push_back(dictionary.enter(value));
    }
    if (!states.empty()) {
        return states;
    }
    for (std::uint32_t state = 0; state < dictionary.size(); ++state) {
        states.push_back(state);
    }
    std::sort(states.begin(), states.end(), [this](std::uint32_t left, std::uint32_t right) {
        return DataOrder()(dictionary[left], dictionary[right]);
    });
    return states;
}

std::vector<SummaryRow> TracedTransitionAccumulator::Impl::makeRows(const Metric& metric,
                                                                    bool withAllStates) {
    const std::vector<std::uint32_t> states = listStates(metric);
    const std::vector<const EntityHandle*>& handles = metric.getEntities();
    std::vector<std::uint32_t> order;
    for (std::uint32_t entity = 0; entity < entities.size(); ++entity) {
        order.push_back(entity);
    }
    std::sort(order.begin(), order.end(), [&](std::uint32_t left, std::uint32_t right) {
        return handles[left]->getId() < handles[right]->getId();
    });
    std::vector<SummaryRow> made;
    for (const std::uint32_t entity : order) {
        for (std::uint32_t position = 0; position < states.size(); ++position) {
            if (!withAllStates && entities[entity].get(states[position]).entries == 0) {
                continue;
            }
            SummaryRow row{handles[entity]};
            dictionary[states[position]].toFormattedString(row.text);
            row.source = entity;
            row.value = states[position];
            row.columnOrder = position;
            made.push_back(row);
        }
    }
    return made;
}

int TracedTransitionAccumulator::Impl::emit(Metric& metric, std::uint32_t number) {
    const ResidencyForm* form = FORMS[number];
    const char* key = findMetricTypeRules(Metric::MetricType::TracedValueTransition)->selectors[number];
    SummaryTable table(metric, key, form != nullptr ? form->titleSuffix : " Summary: Entry Counts", nullptr);
    table.setTextLabel("State");
    if (form != nullptr) {
        addResidencyColumns(table, *form);
    } else {
        table.addColumn("Entry Count", "", DataType::UINT);
    }
    std::vector<SummaryRow> transposedRows;
    if (table.isTransposed()) {
        transposedRows = makeRows(metric, true);
    } else if (rows.empty()) {
        rows = makeRows(metric, !metric.getFiniteSetValues().empty());
    }
    const double ticksPerMillisecond = MetricAccess::ticksPerMillisecond(metric);
    return table.push(table.isTransposed() ? transposedRows : rows,
                      [&](const SummaryRow& row, std::size_t column) {
                          const EntityStates& entity = entities[row.source];
                          const StateTime state = entity.get(row.value);
                          if (form == nullptr) {
                              return SummaryCell(Data(state.entries));
                          }
                          const bool isPercentage = form->hasPercentage && column == 0;
                          if (isPercentage && entity.ticks == 0 && entity.isOnlyState(row.value)) {
                              return realCell(100.0);
                          }
                          return residencyCell(*form, column, static_cast<double>(state.ticks),
                                               static_cast<double>(entity.ticks), ticksPerMillisecond);
                      });
}

TracedTransitionAccumulator::TracedTransitionAccumulator(const std::vector<std::uint32_t>& summaries, Metric&)
    : m_impl(std::make_unique<Impl>()) {
    m_impl->summaries = summaries;
}

TracedTransitionAccumulator::~TracedTransitionAccumulator() = default;

int TracedTransitionAccumulator::initialize(Metric&, const SystemMetadata&) {
    return 0;
}

int TracedTransitionAccumulator::processMessage(Metric& metric) {
    const RowTable& rows = MetricAccess::rowsOf(metric);
    const PendingSamples& samples = MetricAccess::samplesOf(metric);
    m_impl->current.grow(rows.size());
    m_impl->entities.resize(rows.entities().size());
    for (const PendingSample& sample : samples.samples()) {
        m_impl->enter(rows, sample, samples.valueOf(sample));
    }
    return 0;
}

int TracedTransitionAccumulator::finalize(Metric& metric) {
    if (!m_impl->isFinished) {
        m_impl->isFinished = true;
        m_impl->chargeRest(metric);
    }
    int result = 0;
    for (const std::uint32_t number : m_impl->summaries) {
        if (number < std::size(FORMS)) {
            result |= m_impl->emit(metric, number);
        }
    }
    return result;
}

} // namespace pwr
