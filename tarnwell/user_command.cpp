#include "tarnwell/user_command.h"

#include "tarnwell/complaints.h"

#include <cmath>

namespace tarnwell {

bool UserCommand::startNow() {
    return m_command.empty() || m_delaySeconds > 0 || start_i();
}

void UserCommand::setBegin(std::uint64_t tick, double ticksPerSecond) {
    if (!m_command.empty() && m_process == nullptr) {
        m_dueTick = tick + static_cast<std::uint64_t>(std::llround(m_delaySeconds * ticksPerSecond));
    }
}

void UserCommand::look(std::uint64_t now) {
    if (now >= m_dueTick) {
        m_dueTick = UINT64_MAX;
        start_i();
    }
}

bool UserCommand::start_i() {
    std::string reason;
    m_process = pwr::platform::ChildProcess::start(m_command, reason);
    m_hasFailed = m_process == nullptr;
    if (m_hasFailed) {
        complain({"cannot start " + m_command.front() + ": " + reason});
    }
    return !m_hasFailed;
}

} // namespace tarnwell
