#pragma once

#include "common/platform/child_process.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace tarnwell {

/// The command that runs beside a collection, or none: started before it, or so long after its begin.
class UserCommand {
public:
    UserCommand(const std::vector<std::string>& command, double delaySeconds)
        : m_command(command), m_delaySeconds(delaySeconds) {}

    /// Starts a command that waits for nothing. False, and the user was told, when that fails.
    bool startNow();
    /// Where the collection begins, which a delay counts from.
    void setBegin(std::uint64_t tick, double ticksPerSecond);
    /// When the command starts; never when it has started, or there is none.
    std::uint64_t dueTick() const { return m_dueTick; }
    /// Starts it when it is due.
    void look(std::uint64_t now);

    /// Null until it has started.
    pwr::platform::ChildProcess* process() const { return m_process.get(); }
    /// Whether it has ended, or will never start.
    bool isOver() const { return m_hasFailed || (m_process != nullptr && m_process->hasEnded()); }
    bool hasFailed() const { return m_hasFailed; }

private:
    bool start_i();

    const std::vector<std::string>& m_command;
    double m_delaySeconds;
    std::uint64_t m_dueTick = UINT64_MAX;
    std::unique_ptr<pwr::platform::ChildProcess> m_process;
    bool m_hasFailed = false;
};

} // namespace tarnwell
