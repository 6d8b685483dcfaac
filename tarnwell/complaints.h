#pragma once

#include "tarnwell/exit_code.h"
#include "tarnwell/message_log.h"

#include <string>
#include <vector>

namespace tarnwell {

/// Tells the user on standard error what stands in the way, and hands the code on.
inline int fail(ExitCode code, const std::string& text) {
    say("tarnwell: " + text);
    return toInt(code);
}

inline void complain(const std::vector<std::string>& problems) {
    for (const std::string& problem : problems) {
        say("tarnwell: " + problem);
    }
}

} // namespace tarnwell
