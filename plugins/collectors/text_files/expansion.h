#pragma once

#include <string>
#include <vector>

#include "common/machine_files.h"
#include "common/metadata/msg_metadata.h"
#include "plugins/collectors/owner_patterns.h"
#include "plugins/collectors/text_files/field.h"

namespace text_files {

/// One value of a message on this machine: where it stands, and whom it belongs to.
struct Place : collectors::Owner {
    std::string path;
    Field field;
    RawType type = RawType::UINT;
    unsigned width = 64;
    int processor = -1; ///< the logical processor whose files these are; -1 for none
};

/// All values of a message, in the order of its operations and then of the machine's own numbering.
struct Expansion {
    std::vector<Place> places;
    std::string error;  ///< a declaration that cannot be understood
    std::string denied; ///< a path that is there but may not be read
};

/// Finds everything that a message's patterns match now. Makes no handles, so that it can be asked what
/// a machine offers without leaving traces in a collection.
Expansion expandMessage(const pwr::MachineFiles& machine, const pwr::MsgMetadata& message);

} // namespace text_files
