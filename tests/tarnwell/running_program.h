#pragma once

#include <memory>
#include <string>
#include <vector>

namespace kr_test {

/// The installed program, running in the current folder without output, for tests that end it in the hard way.
class RunningProgram {
public:
    explicit RunningProgram(const std::vector<std::string>& arguments);
    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;
    /// Kills what still runs.
    ~RunningProgram();

    bool isRunning() const;
    /// The system's number of the process, for what only one system can do.
    long number() const;
    /// As the system does when memory or power runs out: without a last word to the program.
    void kill();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace kr_test
