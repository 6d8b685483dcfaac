#pragma once

#include "tarnwell/exit_code.h"

#include <cstdio>
#include <string>
#include <vector>

namespace tarnwell {

/// Tells the user on standard error what stands in the way, and hands the code on.
inline int fail(ExitCode code, const std::string& text) {
    std::fprintf(stderr, "tarnwell: %s\n", text.c_str());
    return toInt(code);
}

inline void complain(const std::vector<std::string>& problems) {
    for (const std::string& problem : problems) {
        std::fprintf(stderr, "tarnwell: %s\n", problem.c_str());
    }
}

} // namespace tarnwell
