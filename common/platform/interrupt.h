#pragma once

#include "common/export.h"

#include <cstdint>

namespace pwr::platform {

class ChildProcess;

/// Counts the user's requests to stop: Ctrl-C and the system's polite termination.
/// The first one is counted and wakes waitForEvent; the second one ends the process at once with exit code 130,
/// so that a program that hangs in its clean-up can still be left. On POSIX systems what follows the first within a
/// tenth of a second is the same request: launchers signal a process and its group.
KRCOMMON_API int installInterruptHandler();

/// How often the user has asked to stop since the handler was installed.
KRCOMMON_API unsigned interruptCount();

/// Whether the last interrupt came from the terminal or console, which tells the commands running there as well.
KRCOMMON_API bool isInterruptFromTerminal();

/// Sleeps for at most @p nanoseconds; returns early when an interrupt has been counted or when
/// @p child (may be null) has ended. It may also return early for no reason: look at the clock.
KRCOMMON_API void waitForEvent(std::uint64_t nanoseconds, ChildProcess* child);

} // namespace pwr::platform
