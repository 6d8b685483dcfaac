#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "plugins/collectors/aggregator/counter.h"
#include "plugins/collectors/binary_file.h"

namespace aggregator {

/// How the samples of one message are read: neighbours in one go, into places that were settled when the message
/// was opened. In a steady state a reading allocates nothing.
class SamplePlan {
public:
    SamplePlan(const pwr::MachineFiles& machine, std::vector<Counter> counters);

    /// Reads all samples. What a file does not give is missing.
    void read();
    /// Why the first file that the last reading got nothing from failed, except that it had no answer just now;
    /// OK, with "", when there is none.
    pwr::MachineStatus failure(std::string& file) const;
    /// Appends the values of the last reading to a record; 1 when it takes no more.
    int store(CollectionData& out) const;

private:
    struct Target {
        std::size_t counter;
        std::size_t position; ///< of the sample in the run
    };
    /// Samples that stand so near to each other that one reading of the file is faster than two.
    struct Run {
        std::size_t file;
        std::uint64_t offset;
        std::vector<char> bytes;
        std::vector<Target> targets;
        pwr::MachineStatus status;
    };

    void addCounter_i(const pwr::MachineFiles& machine, std::size_t counter);

    std::vector<Counter> m_counters;
    std::vector<collectors::BinaryFile> m_files;
    std::vector<Run> m_runs;
    std::vector<std::optional<std::uint64_t>> m_samples; // one per counter
};

} // namespace aggregator
