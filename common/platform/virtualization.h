#pragma once

#include "common/export.h"

namespace pwr::platform {

/// What of the operating system itself runs above its hypervisor. All false on systems that know no such thing.
struct Virtualization {
    bool hasHypervisor = false;         ///< the system's own hypervisor runs below it
    bool hasSecureMode = false;         ///< a secure kernel runs beside the ordinary one
    bool protectsCodeIntegrity = false; ///< the hypervisor lets only checked code run in the kernel
};

KRCOMMON_API Virtualization virtualization();

} // namespace pwr::platform
