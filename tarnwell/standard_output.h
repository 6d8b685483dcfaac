#pragma once

#include "tarnwell/complaints.h"

#include <cstdio>
#include <string>

namespace tarnwell {

/// Writes a whole text to the standard output and gives the program's exit code.
inline int printWhole(const std::string& text) {
    const bool isWritten =
        std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
    return isWritten ? toInt(ExitCode::DONE)
                     : fail(ExitCode::FAILED, "the text could not be written completely");
}

} // namespace tarnwell
