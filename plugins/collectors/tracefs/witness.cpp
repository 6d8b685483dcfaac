#include "plugins/collectors/tracefs/witness.h"

#include <charconv>

#include "plugins/collectors/path_expansion.h"

namespace tracefs {

namespace {

// What is counted and what is traced do not happen at one moment, so a few are always between the two.
constexpr std::uint64_t NEGLIGIBLE = 4;
constexpr std::uint64_t NEGLIGIBLE_SHARE = 50;
constexpr unsigned MOST_PROCESSORS = 4;

bool agree(std::uint64_t traced, std::uint64_t counted) {
    const std::uint64_t difference = traced > counted ? traced - counted : counted - traced;
    return difference <= NEGLIGIBLE + counted / NEGLIGIBLE_SHARE;
}

/// The processors of which one witness told less than the other.
struct Side {
    const char* verdict;
    unsigned processors = 0;
    std::string text{};

    void add(unsigned processor, std::uint64_t traced, std::uint64_t counted) {
        if (++processors <= MOST_PROCESSORS) {
            text += (text.empty() ? "processor " : ", processor ") + std::to_string(processor) + ": " +
                    std::to_string(traced) + " traced, " + std::to_string(counted) + " counted";
        }
    }
    std::string sentence(const std::string& name) const {
        const std::string more = processors > MOST_PROCESSORS
                                     ? " and " + std::to_string(processors - MOST_PROCESSORS) + " more"
                                     : "";
        return name + ": the trace and the kernel's counters disagree (" + text + more + "). " + verdict;
    }
};

} // namespace

Witness::Witness(const pwr::MachineFiles& machine, const std::string& pattern)
    : m_pattern(pattern), m_begin(read_i(machine)) {}

Witness::Counts Witness::read_i(const pwr::MachineFiles& machine) const {
    Counts counts;
    std::vector<collectors::ExpandedPath> files;
    std::string error;
    if (m_pattern.empty() || collectors::expandPath(machine, m_pattern, files, error) != 0) {
        return counts;
    }
    for (const collectors::ExpandedPath& file : files) {
        std::string text;
        std::uint64_t count = 0;
        const int processor = collectors::numberOf(file.binding, "cpu");
        if (processor >= 0 && machine.read(file.path, text) == pwr::MachineStatus::OK &&
            std::from_chars(text.data(), text.data() + text.size(), count).ec == std::errc()) {
            counts[static_cast<unsigned>(processor)] += count;
        }
    }
    return counts;
}

std::vector<std::string> Witness::disagreements(const pwr::MachineFiles& machine,
                                                const std::string& name) const {
    Side silent{"The counters are the better witness: the trace is silent there, or lost events."};
    Side deaf{"The trace is the better witness: the counters do not count all."};
    for (const auto& [processor, count] : read_i(machine)) {
        const auto begin = m_begin.find(processor);
        if (begin == m_begin.end() || count < begin->second) {
            continue; // it came while collecting: nobody knows how many there were
        }
        const std::uint64_t counted = count - begin->second;
        const auto found = m_traced.find(processor);
        const std::uint64_t traced = found == m_traced.end() ? 0 : found->second;
        if (!agree(traced, counted)) {
            (traced < counted ? silent : deaf).add(processor, traced, counted);
        }
    }
    std::vector<std::string> sentences;
    for (const Side* side : {&silent, &deaf}) {
        if (side->processors > 0) {
            sentences.push_back(side->sentence(name));
        }
    }
    return sentences;
}

} // namespace tracefs
