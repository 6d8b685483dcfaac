#pragma once

#include <string>
#include <vector>

#include "common/machine_files.h"
#include "common/metadata/msg_metadata.h"

namespace text_files {

/// What a message writes, and where: each text goes to every file that its operation's path matches.
struct Writing {
    struct Target {
        std::string path;
        std::string text;
    };

    std::vector<Target> targets;
    std::string error; ///< a declaration that cannot be understood
};

Writing planWriting(const pwr::MachineFiles& machine, const pwr::MsgMetadata& message);

/// Writes all of it, whatever fails on the way. One complaint for each file that did not take its text.
std::vector<std::string> carryOut(const pwr::MachineFiles& machine, const Writing& writing);

} // namespace text_files
