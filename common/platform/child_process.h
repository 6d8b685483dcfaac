#pragma once

#include "common/export.h"

#include <memory>
#include <string>
#include <vector>

namespace pwr::platform {

/// A command that the host runs beside a collection; it shares the host's standard streams.
/// The destructor does not end the command: a report must not kill what the user asked to run.
class KRCOMMON_API ChildProcess {
public:
    /// Starts @p command (program and arguments; the program is looked up in PATH).
    /// Null when it cannot be started; then @p reason says why.
    static std::unique_ptr<ChildProcess> start(const std::vector<std::string>& command, std::string& reason);

    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    ~ChildProcess();

    /// True once the command has ended; never blocks.
    bool hasEnded();

    /// Blocks until the command has ended and gives its exit code; 128 + signal number when a signal ended it.
    int wait();

    /// Hands on a wish to stop that the terminal has not told the command already. Nothing on Windows, where only
    /// the console can tell.
    void interrupt();

    /// What the system can wait for: the process handle on Windows, null elsewhere.
    void* systemHandle() const;

private:
    struct State;
    explicit ChildProcess(std::unique_ptr<State> state);
    std::unique_ptr<State> m_state;
};

} // namespace pwr::platform
