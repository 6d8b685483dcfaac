#pragma once

#include "common/export.h"

#include <cstdint>
#include <string>
#include <vector>

namespace pwr::platform {

/// A device on the PCI bus.
struct PciFunction {
    unsigned segment = 0;
    unsigned bus = 0;
    unsigned device = 0;
    unsigned function = 0;
    unsigned vendor = 0;
    unsigned deviceId = 0;
    std::uint32_t classCode = 0; ///< class, subclass and programming interface, a byte each
    std::string name;            ///< "" when the system does not call it anything
};

/// The devices that are present, in no certain order, as the system's own call lists them. Empty where the system lists
/// them in files instead, and where it says nothing of them.
KRCOMMON_API std::vector<PciFunction> pciFunctions();

} // namespace pwr::platform
