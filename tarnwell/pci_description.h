#pragma once

#include "common/machine_files.h"

namespace pwr {
class SystemMetadata;
}

namespace tarnwell {

/// Fills the record's PCI devices, in the order of their places, and the device id of the integrated graphics.
/// Devices are called as the system calls them, else as its list of PCI ids does, else by their class.
/// Files first; a live system without such files is asked.
void describePci(const pwr::MachineFiles& machine, bool isLive, pwr::SystemMetadata& system);

} // namespace tarnwell
