#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "common/machine_files.h"

namespace tracefs {

/// The kernel's own counters of what a trace tells as well. Where the two do not agree, one of them is wrong: a
/// hypervisor can leave a tracepoint silent on some processors, and a full buffer loses events.
class Witness {
public:
    /// The pattern of the files, with {cpu} in it; the files of one processor are added up. "" is nobody. Reads them.
    Witness(const pwr::MachineFiles& machine, const std::string& pattern);

    /// The trace told of one more on the processor.
    void count(unsigned processor) {
        if (!m_pattern.empty()) {
            ++m_traced[processor];
        }
    }

    /// Reads the files again: a sentence for each way to disagree.
    std::vector<std::string> disagreements(const pwr::MachineFiles& machine, const std::string& name) const;

private:
    using Counts = std::map<unsigned, std::uint64_t>; // by the processor's number

    Counts read_i(const pwr::MachineFiles& machine) const;

    std::string m_pattern;
    Counts m_begin;
    Counts m_traced;
};

} // namespace tracefs
