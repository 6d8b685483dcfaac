#pragma once

namespace tarnwell {

/// What the program tells its caller. A command's own non-zero code wins over these.
enum class ExitCode : int {
    DONE = 0,
    FAILED = 1,
    USAGE = 2,
    PARTIAL = 3,            ///< something that was asked for is missing from the report
    DAMAGED = 4,            ///< the saved collection is damaged or was not closed; what is intact was used
    COMMAND_NOT_FOUND = 127 ///< the command to run could not be started
};

constexpr int toInt(ExitCode code) {
    return static_cast<int>(code);
}

} // namespace tarnwell
