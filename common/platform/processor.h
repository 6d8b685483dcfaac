#pragma once

#include "common/export.h"

#include <cstdint>
#include <string>

namespace pwr::platform {

/// What the processor that asks says of itself by its identification instruction. Fields that it does not
/// tell, and all where there is no such instruction, stay empty or 0. Frequencies are in MHz.
struct ProcessorReport {
    std::string vendor; ///< the twelve letters of its maker
    std::string brand;
    unsigned family = 0;
    unsigned model = 0;
    unsigned stepping = 0;
    double busMHz = 0;
    double baseMHz = 0;
    double maximumMHz = 0;
    double counterMHz = 0;          ///< of the time-stamp counter
    bool isHypervisorKnown = false; ///< whether the instruction told if a hypervisor runs below
    bool hasHypervisor = false;
    std::string hypervisor; ///< the letters with which the hypervisor signs, if it does
};

KRCOMMON_API ProcessorReport processorReport();

/// What firmware and system noted of the processor at the start, where no file tells it; 0 where unknown.
struct ProcessorSettings {
    std::uint32_t microcodeRevision = 0;
    std::uint32_t platformId = 0; ///< one bit for the processor's kind of platform
    double nominalMHz = 0;
};

KRCOMMON_API ProcessorSettings processorSettings();

} // namespace pwr::platform
