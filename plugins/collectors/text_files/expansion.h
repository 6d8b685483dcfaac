#pragma once

#include <string>
#include <vector>

#include "common/machine_files.h"
#include "common/metadata/msg_metadata.h"
#include "plugins/collectors/text_files/field.h"
#include "plugins/collectors/text_files/pattern.h"

namespace text_files {

/// One value of a message on this machine: where it stands, and whom it belongs to.
struct Place {
    std::string path;
    Field field;
    Binding binding;
    RawType type = RawType::UINT;
    unsigned width = 64;
    std::string entity;     ///< what tells it from others: "{cpu}" filled in, "hwmon2", "eth0"
    std::string entityName; ///< how reports call it
    std::string descriptor; ///< "" for none
    int processor = -1;     ///< the logical processor whose files these are; -1 for none
    bool isProcessor = false, isCore = false, isPackage = false; ///< the entity is that of the topology
};

/// All values of a message, in the order of its operations and then of the machine's own numbering.
struct Expansion {
    std::vector<Place> places;
    std::string error;  ///< a declaration that cannot be understood
    std::string denied; ///< a path that is there but may not be read
};

/// The value of a key: an operation's own, else the message's constant; "" when there is none.
const std::string& keyOf(const pwr::MsgMetadata& message, const pwr::OperationMetadata& operation,
                         const char* key);
const std::string& constantOf(const pwr::MsgMetadata& message, const char* key);

/// Finds everything that a message's patterns match now. Makes no handles, so that it can be asked what
/// a machine offers without leaving traces in a collection.
Expansion expandMessage(const pwr::MachineFiles& machine, const pwr::MsgMetadata& message);

} // namespace text_files
