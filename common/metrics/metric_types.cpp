#include "common/metrics/metric_types.h"

#include "common/metrics/sampled_delta_accumulator.h"
#include "common/metrics/sampled_residency_accumulator.h"
#include "common/metrics/sampled_value_accumulator.h"
#include "common/metrics/traced_event_accumulator.h"
#include "common/metrics/traced_transition_accumulator.h"

namespace pwr {

namespace {

using Type = Metric::MetricType;

// The keys must match those of the output configuration files, "OCCURENCES" included.
constexpr const char* DELTA_KEYS[] = {"SAMPLE-COUNT", "AVERAGE-RATE-TOTAL", "TOTAL-DELTA"};
constexpr const char* RESIDENCY_KEYS[] = {"SAMPLE-COUNT", "RESIDENCY-PERCENTAGE", "RESIDENCY-MILLISECOND",
                                          "RESIDENCY-COMBINED"};
constexpr const char* VALUE_KEYS[] = {
    "SAMPLE-COUNT", "MIN-MAX-AVG",           "NUMBER-OF-OCCURENCES", "RELATIVE-FREQUENCY-PERCENTAGE",
    "MIN-MAX",      "APPROXIMATED-RESIDENCY"};
constexpr const char* TRANSITION_KEYS[] = {"RESIDENCY-PERCENTAGE", "RESIDENCY-MILLISECOND",
                                           "TRANSITION-COUNTS", "RESIDENCY-COMBINED"};
constexpr const char* EVENT_KEYS[] = {"SAMPLE-COUNT", "EVENT-NAME-COUNTS", "TOP-TEN-EVENT"};

constexpr const char* SAMPLED_TITLE = " Summary - Sampled: Total Samples Received";
constexpr const char* TRACED_TITLE = " Summary: Total Samples Received";

template <class T>
std::shared_ptr<Accumulator> make(const std::vector<std::uint32_t>& summaries, Metric& metric) {
    return std::make_shared<T>(summaries, metric);
}

// Indexed by the type's number.
constexpr MetricTypeRules RULES[] = {
    {Type::SampledDelta, DELTA_KEYS, true, false, false, SAMPLED_TITLE, make<SampledDeltaAccumulator>},
    {Type::SampledResidency, RESIDENCY_KEYS, true, true, false, SAMPLED_TITLE,
     make<SampledResidencyAccumulator>},
    {Type::SampledValue, VALUE_KEYS, true, false, true, SAMPLED_TITLE, make<SampledValueAccumulator>},
    {Type::TracedValueTransition, TRANSITION_KEYS, false, false, true, TRACED_TITLE,
     make<TracedTransitionAccumulator>},
    {Type::TracedEvent, EVENT_KEYS, false, false, false, TRACED_TITLE, make<TracedEventAccumulator>},
};

} // namespace

const MetricTypeRules* findMetricTypeRules(Metric::MetricType type) {
    const auto number = static_cast<std::size_t>(type);
    return number < std::size(RULES) ? &RULES[number] : nullptr;
}

} // namespace pwr
