#pragma once

#include "common/machine_files.h"
#include "common/metadata/system_metadata.h"

namespace tarnwell {

/// Fills what the record says of the machine itself: host, operating system, processor identity and
/// frequencies, and the processor topology. Everything is read through @p machine first, so that a
/// recorded machine describes itself; what its files do not say and only the running system knows
/// is asked from the system when @p isLive.
void describeMachine(const pwr::MachineFiles& machine, bool isLive, pwr::SystemMetadata& system);

} // namespace tarnwell
