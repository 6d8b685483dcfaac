#pragma once

#include <string>
#include <vector>

#include "common/machine_files.h"
#include "common/metadata/msg_metadata.h"
#include "plugins/collectors/registers/register_plan.h"

namespace registers {

/// The registers of the processors, where the key PATH is missing.
inline constexpr const char* DEFAULT_PATH = "/dev/cpu/{cpu}/msr";

/// All values of a message, in the order of its operations and then of the processors' numbers, and what stood in
/// the way of others.
struct RegisterValues {
    std::vector<RegisterValue> values;
    bool hasAnswer = false; ///< at least one of them can be read now
    std::string error;      ///< a declaration that cannot be understood
    std::string denied;     ///< a file that is there but may not be read
    std::string silent;     ///< a file that is there but does not answer for the register
};

RegisterValues findRegisters(const pwr::MachineFiles& machine, const pwr::MsgMetadata& message);

} // namespace registers
