#include "plugins/collectors/aggregator/sample_plan.h"

#include <algorithm>
#include <numeric>
#include <span>
#include <tuple>
#include <utility>

namespace aggregator {

namespace {

constexpr std::size_t SAMPLE_SIZE = 8;
// A call costs more than so many bytes that nobody asked for.
constexpr std::uint64_t MAX_GAP = 256;

} // namespace

SamplePlan::SamplePlan(const pwr::MachineFiles& machine, std::vector<Counter> counters)
    : m_counters(std::move(counters)), m_samples(m_counters.size()) {
    std::vector<std::size_t> order(m_counters.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(), [this](std::size_t left, std::size_t right) {
        return std::tie(m_counters[left].file, m_counters[left].offset) <
               std::tie(m_counters[right].file, m_counters[right].offset);
    });
    for (const std::size_t counter : order) {
        addCounter_i(machine, counter);
    }
}

void SamplePlan::addCounter_i(const pwr::MachineFiles& machine, std::size_t counter) {
    const Counter& added = m_counters[counter];
    const bool isNewFile = m_files.empty() || m_files.back().path() != added.file;
    if (isNewFile) {
        m_files.emplace_back(machine, added.file);
    }
    if (isNewFile || added.offset > m_runs.back().offset + m_runs.back().bytes.size() + MAX_GAP) {
        m_runs.push_back({m_files.size() - 1, added.offset, {}, {}, pwr::MachineStatus::OK});
    }
    Run& run = m_runs.back();
    const auto position = static_cast<std::size_t>(added.offset - run.offset);
    run.bytes.resize(std::max(run.bytes.size(), position + SAMPLE_SIZE));
    run.targets.push_back({counter, position});
}

void SamplePlan::read() {
    for (Run& run : m_runs) {
        run.status = m_files[run.file].read(run.offset, run.bytes);
        for (const Target& target : run.targets) {
            const std::span<const char> bytes(run.bytes);
            m_samples[target.counter].reset();
            if (run.status == pwr::MachineStatus::OK) {
                m_samples[target.counter] =
                    collectors::numberIn(bytes.subspan(target.position).first<SAMPLE_SIZE>());
            }
        }
    }
}

pwr::MachineStatus SamplePlan::failure(std::string& file) const {
    const auto failed = std::find_if(m_runs.begin(), m_runs.end(), [](const Run& run) {
        return run.status != pwr::MachineStatus::OK && run.status != pwr::MachineStatus::NO_ANSWER;
    });
    file = failed == m_runs.end() ? std::string() : m_files[failed->file].path();
    return failed == m_runs.end() ? pwr::MachineStatus::OK : failed->status;
}

int SamplePlan::store(CollectionData& out) const {
    for (std::size_t i = 0; i < m_counters.size(); ++i) {
        const int result = m_samples[i] ? out.add(m_counters[i].valueIn(*m_samples[i])) : out.addMissing();
        if (result != 0) {
            return 1;
        }
    }
    return 0;
}

} // namespace aggregator
