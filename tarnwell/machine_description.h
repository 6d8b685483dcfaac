#pragma once

#include "common/machine_files.h"
#include "common/metadata/system_metadata.h"

namespace tarnwell {

/// Fills what the record says of the machine itself: host, operating system, platform, processor with its
/// topology, PCI devices, and the telemetry endpoints, which the collectors have found: load them before. Everything
/// else is read through @p machine first, so that a recorded machine describes
/// itself; what its files do not say and only the running system knows is asked from the system when @p isLive.
/// A live system that keeps its facts elsewhere is asked alone. What is not known stays empty or 0; texts that
/// must not be empty are "unknown" then.
void describeMachine(const pwr::MachineFiles& machine, bool isLive, pwr::SystemMetadata& system);

} // namespace tarnwell
