// What a sample costs on its way into a metric container, beside what the best hand-written loop without our classes
// costs in the same run, and beside a library of accumulators with hash maps.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <ctime>
#include <functional>
#include <limits>
#include <memory>
#include <numeric>
#include <random>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#if __has_include(<boost/accumulators/accumulators.hpp>)
#define BENCH_HAS_BOOST 1
#include <boost/accumulators/accumulators.hpp>
#include <boost/accumulators/statistics.hpp>
#include <boost/accumulators/statistics/weighted_sum.hpp>
#else
#define BENCH_HAS_BOOST 0
#endif

#include "common/config/writer_interface_configfile_parser.h"
#include "common/metadata/system_metadata.h"
#include "common/metrics/metric.h"
#include "common/model/data_descriptor.h"
#include "common/model/entity_handle.h"
#include "common/plugin/plugin_environment.h"
#include "common/writer/writer_plugin.h"
#include "common/writer/writer_stream_host.h"

namespace {

constexpr std::uint32_t DESCRIPTORS = 16;
constexpr std::uint64_t DISTINCT = 16;
constexpr std::size_t SAMPLES = std::size_t{1} << 22;
constexpr std::uint64_t INTERVAL = 1000;

/// The samples: each point has every row once, in the order of the rows or in one of several random orders, so that
/// no point's order says anything about the next one's.
struct Workload {
    Workload(std::uint32_t rowCount, bool isShuffled) : rows(rowCount), points(SAMPLES / rowCount) {
        std::mt19937 random(7);
        std::generate(values.begin(), values.end(),
                      [&] { return static_cast<std::uint8_t>(random() % DISTINCT); });
        for (int i = 0; i < (isShuffled ? 4 : 1); ++i) {
            std::vector<std::uint32_t>& order = orders.emplace_back(rowCount);
            std::iota(order.begin(), order.end(), 0U);
            if (isShuffled) {
                std::shuffle(order.begin(), order.end(), random);
            }
        }
    }
    /// Calls take(row, timestamp, value) for each sample; returns nanoseconds a sample.
    template <class Take> double run(std::uint64_t firstPoint, Take take) const {
        const std::clock_t start = std::clock(); // processor time: others may be using the machine
        for (std::uint64_t point = firstPoint; point < firstPoint + points; ++point) {
            const std::vector<std::uint32_t>& order = orders[point % orders.size()];
            const std::uint8_t* value = &values[(point * 40503 * rows) % (values.size() - rows)];
            for (const std::uint32_t row : order) {
                take(row, (point + 1) * INTERVAL, *value++);
            }
        }
        const double seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
        return seconds * 1e9 / static_cast<double>(points * rows);
    }

    std::uint32_t rows;
    std::uint64_t points;
    std::vector<std::vector<std::uint32_t>> orders;
    std::vector<std::uint8_t> values =
        std::vector<std::uint8_t>(std::size_t{1} << 18); // made once, so that they cost nothing here
};

std::uint64_t keyOf(std::uint32_t row) {
    return (std::uint64_t{row / DESCRIPTORS + 100} << 32) + row % DESCRIPTORS;
}

/// The limit: what somebody writes who needs exactly this, and nothing else.
class HandWritten {
public:
    HandWritten(std::uint32_t rows, bool keepsDistinct)
        : m_slots(2 * std::size_t{rows}, {0, NONE}), m_keepsDistinct(keepsDistinct) {}

    void take(std::uint64_t key, std::uint64_t timestamp, std::uint64_t value) {
        if (timestamp != m_point) {
            flush();
            m_point = timestamp;
        }
        const std::uint32_t row = find_i(key);
        const std::uint64_t duration = timestamp - m_rows[row].last;
        m_rows[row].last = timestamp;
        m_pending.push_back({row, value, duration});
    }

    void flush() {
        for (const Pending& sample : m_pending) {
            if (!m_keepsDistinct) {
                add_i(m_rows[sample.row], sample.value, sample.duration);
                continue;
            }
            Waiting& waiting = m_waiting[sample.row];
            waiting.samples[waiting.count] = {sample.value, sample.duration};
            if (++waiting.count == 32) {
                drain_i(sample.row);
            }
        }
        m_pending.clear();
    }

private:
    static constexpr std::uint32_t NONE = 0xFFFFFFFF;
    struct Slot {
        std::uint64_t key;
        std::uint32_t row;
    };
    struct Pending {
        std::uint32_t row;
        std::uint64_t value;
        std::uint64_t duration;
    };
    struct Row {
        std::uint64_t last = 0;
        std::uint64_t minimum = std::numeric_limits<std::uint64_t>::max();
        std::uint64_t maximum = 0;
        std::uint64_t sum = 0;
        std::uint64_t count = 0;
        double weightedSum = 0.0;
        double totalWeight = 0.0;
    };
    struct Sample {
        std::uint64_t value;
        std::uint64_t duration;
    };
    struct Waiting {
        Sample samples[32];
        std::uint32_t count = 0;
    };
    struct Distinct {
        std::uint64_t value;
        std::uint64_t count;
        std::uint64_t duration;
    };
    struct DistinctTable {
        Distinct entries[2 * DISTINCT] = {};
    };

    std::uint32_t find_i(std::uint64_t key) {
        std::uint64_t hash = key * 0x9E3779B97F4A7C15U;
        hash ^= hash >> 32;
        for (std::size_t slot = hash & (m_slots.size() - 1);; slot = (slot + 1) & (m_slots.size() - 1)) {
            if (m_slots[slot].row == NONE) {
                m_slots[slot] = {key, static_cast<std::uint32_t>(m_rows.size())};
                m_rows.emplace_back();
                m_waiting.resize(m_keepsDistinct ? m_rows.size() : 0);
                m_distinct.resize(m_keepsDistinct ? m_rows.size() : 0);
            }
            if (m_slots[slot].key == key) {
                return m_slots[slot].row;
            }
        }
    }
    static void add_i(Row& row, std::uint64_t value, std::uint64_t duration) {
        row.minimum = std::min(row.minimum, value);
        row.maximum = std::max(row.maximum, value);
        row.sum += value;
        ++row.count;
        row.weightedSum += static_cast<double>(value) * static_cast<double>(duration);
        row.totalWeight += static_cast<double>(duration);
    }
    void drain_i(std::uint32_t number) {
        Row row = m_rows[number];
        Waiting& waiting = m_waiting[number];
        DistinctTable& distinct = m_distinct[number];
        for (std::uint32_t i = 0; i < waiting.count; ++i) {
            const Sample& sample = waiting.samples[i];
            add_i(row, sample.value, sample.duration);
            std::size_t slot = ((sample.value * 0x9E3779B97F4A7C15U) >> 40) % (2 * DISTINCT);
            while (distinct.entries[slot].count != 0 && distinct.entries[slot].value != sample.value) {
                slot = (slot + 1) % (2 * DISTINCT);
            }
            distinct.entries[slot].value = sample.value;
            ++distinct.entries[slot].count;
            distinct.entries[slot].duration += sample.duration;
        }
        waiting.count = 0;
        m_rows[number] = row;
    }

    std::vector<Slot> m_slots;
    std::vector<Row> m_rows;
    std::vector<Waiting> m_waiting;
    std::vector<DistinctTable> m_distinct;
    std::vector<Pending> m_pending;
    std::uint64_t m_point = 0;
    bool m_keepsDistinct;
};

#if BENCH_HAS_BOOST
class BoostAccumulators {
public:
    void take(std::uint64_t key, std::uint64_t timestamp, std::uint64_t value) {
        Row& row = m_rows[key];
        const std::uint64_t duration = timestamp - row.last;
        row.last = timestamp;
        row.plain(static_cast<double>(value));
        row.weighted(static_cast<double>(value), boost::accumulators::weight = static_cast<double>(duration));
        Occurrences& occurrences = row.distinct[value];
        ++occurrences.count;
        occurrences.duration += duration;
    }

private:
    struct Occurrences {
        std::uint64_t count = 0;
        std::uint64_t duration = 0;
    };
    struct Row {
        std::uint64_t last = 0;
        // Under weights "sum" is the weighted one, so the plain statistics need a set of their own.
        boost::accumulators::accumulator_set<
            double,
            boost::accumulators::stats<boost::accumulators::tag::min, boost::accumulators::tag::max,
                                       boost::accumulators::tag::sum, boost::accumulators::tag::count>>
            plain;
        boost::accumulators::accumulator_set<
            double,
            boost::accumulators::stats<boost::accumulators::tag::weighted_sum,
                                       boost::accumulators::tag::sum_of_weights>,
            double>
            weighted;
        std::unordered_map<std::uint64_t, Occurrences> distinct;
    };
    std::unordered_map<std::uint64_t, Row> m_rows;
};
#endif

/// A container with everything that it needs around it.
class Container {
public:
    Container(std::uint32_t rows, bool keepsDistinct, bool keepsElements)
        : m_stream(pwr::WriterStreamHost::create(m_writers)), m_keepsElements(keepsElements) {
        g_pluginEnvironment->setWriterStream(m_stream);
        std::string config;
        const char* const hidden[] = {"SAMPLE-COUNT", "NUMBER-OF-OCCURENCES", "RELATIVE-FREQUENCY-PERCENTAGE",
                                      "APPROXIMATED-RESIDENCY"};
        for (const char* key : hidden) {
            const bool isShown = keepsDistinct && key != hidden[0];
            config += std::string("bench_VALUES_") + key + "_TABLE_VALUE=" + (isShown ? "YES" : "NO") + "\n";
        }
        pwr::WriterInterfaceConfigFileParser::destroy();
        pwr::WriterInterfaceConfigFileParser::instance()->parseText("bench", config);
        m_metadata.startTSC = 1;
        m_metadata.twaClockFreq = 1000.0F;
        m_metric = std::make_unique<pwr::Metric>("values", pwr::Metric::MetricType::SampledValue, "VALUES",
                                                 "bench", m_metadata, nullptr);
        makeHandles_i(rows);
        if (keepsDistinct) {
            // A finite set, because without one so many distinct values over all rows are given up.
            std::vector<const pwr::DataDescriptor*> set;
            for (std::uint64_t value = 0; value < DISTINCT; ++value) {
                set.push_back(
                    pwr::DataDescriptorBuilder(std::to_string(value)).setValue(pwr::Data(value)).build());
            }
            m_metric->setFiniteSetValues(set);
        }
    }
    ~Container() {
        m_metric.reset();
        pwr::WriterStreamHost::destroy(m_stream);
    }
    Container(const Container&) = delete;
    Container& operator=(const Container&) = delete;

    void take(std::uint32_t row, std::uint64_t timestamp, std::uint64_t value) {
        if (m_keepsElements) {
            pwr::DataElement& element = m_elements[row];
            element.setValue(pwr::Data(value));
            m_metric->setData(timestamp, element, 0);
            return;
        }
        m_element.setEntity(m_entities[row / DESCRIPTORS]);
        m_element.setDescriptor(m_descriptors[row % DESCRIPTORS]);
        m_element.setValue(pwr::Data(value));
        m_metric->setData(timestamp, m_element, 0);
    }

private:
    void makeHandles_i(std::uint32_t rows) {
        for (std::uint32_t i = 0; i < DESCRIPTORS; ++i) {
            m_descriptors.push_back(pwr::DataDescriptorBuilder("d" + std::to_string(i)).build());
        }
        for (std::uint32_t i = 0; i < rows / DESCRIPTORS; ++i) {
            m_entities.push_back(pwr::EntityHandle::create("e" + std::to_string(i), nullptr));
        }
        for (std::uint32_t row = 0; m_keepsElements && row < rows; ++row) {
            m_elements.emplace_back(m_entities[row / DESCRIPTORS], m_descriptors[row % DESCRIPTORS]);
        }
    }

    std::set<WriterPlugin*> m_writers;
    WriterStream* m_stream;
    bool m_keepsElements;
    pwr::SystemMetadata m_metadata;
    std::unique_ptr<pwr::Metric> m_metric;
    std::vector<const pwr::EntityHandle*> m_entities;
    std::vector<const pwr::DataDescriptor*> m_descriptors;
    std::vector<pwr::DataElement> m_elements;
    pwr::DataElement m_element{nullptr, nullptr};
};

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// Runs the contenders in turn, so that a change of the machine's speed meets all of them alike.
void compare(benchmark::State& state, bool keepsDistinct) {
    constexpr int REPETITIONS = 5;
    const Workload work(static_cast<std::uint32_t>(state.range(0)), state.range(1) != 0);
    HandWritten limit(work.rows, keepsDistinct);
    Container container(work.rows, keepsDistinct, true);
    Container changing(work.rows, keepsDistinct, false);
    std::vector<double> limits;
    std::vector<double> ours;
    std::vector<double> changed;
    std::vector<double> peers;
#if BENCH_HAS_BOOST
    BoostAccumulators peer;
#endif
    for (auto _ : state) {
        for (int round = 0; round < REPETITIONS; ++round) {
            const std::uint64_t first = static_cast<std::uint64_t>(round) * work.points;
            limits.push_back(
                work.run(first, [&](std::uint32_t row, std::uint64_t timestamp, std::uint64_t value) {
                    limit.take(keyOf(row), timestamp, value);
                }));
            ours.push_back(
                work.run(first, [&](std::uint32_t row, std::uint64_t timestamp, std::uint64_t value) {
                    container.take(row, timestamp, value);
                }));
            changed.push_back(
                work.run(first, [&](std::uint32_t row, std::uint64_t timestamp, std::uint64_t value) {
                    changing.take(row, timestamp, value);
                }));
#if BENCH_HAS_BOOST
            if (keepsDistinct) {
                peers.push_back(
                    work.run(first, [&](std::uint32_t row, std::uint64_t timestamp, std::uint64_t value) {
                        peer.take(keyOf(row), timestamp, value);
                    }));
            }
#endif
        }
        state.SetIterationTime(median(ours) * 1e-9);
    }
    state.counters["limit_ns"] = median(limits);
    state.counters["ours_ns"] = median(ours);
    state.counters["ratio"] = median(ours) / median(limits);
    state.counters["one_element_ns"] = median(changed);
    state.counters["one_element_ratio"] = median(changed) / median(limits);
    if (!peers.empty()) {
        state.counters["boost_ns"] = median(peers);
        state.counters["times_faster_than_boost"] = median(peers) / median(ours);
    }
}

void wholeSemantics(benchmark::State& state) {
    compare(state, true);
}
void statisticsOnly(benchmark::State& state) {
    compare(state, false);
}

constexpr const char* ARGUMENTS[] = {"rows", "shuffled"};

BENCHMARK(wholeSemantics)
    ->ArgNames({ARGUMENTS[0], ARGUMENTS[1]})
    ->ArgsProduct({{1024, 65536}, {0, 1}})
    ->Iterations(1)
    ->UseManualTime();
BENCHMARK(statisticsOnly)
    ->ArgNames({ARGUMENTS[0], ARGUMENTS[1]})
    ->ArgsProduct({{1024, 65536}, {0, 1}})
    ->Iterations(1)
    ->UseManualTime();

} // namespace

BENCHMARK_MAIN();
