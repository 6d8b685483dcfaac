#pragma once

#include "common/machine_files.h"

namespace pwr {
class SystemMetadata;
}

namespace tarnwell {

/// Fills the record's processor object (identity, frequencies, microcode, topology), the platform's name, which is
/// the processor's, and what the processor tells of a hypervisor. Files first; what they do not tell is asked from
/// the processor and the system when @p isLive.
void describeProcessor(const pwr::MachineFiles& machine, bool isLive, pwr::SystemMetadata& system);

} // namespace tarnwell
