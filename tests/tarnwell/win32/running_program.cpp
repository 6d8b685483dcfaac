#include "tests/tarnwell/running_program.h"

#include "tests/tarnwell/program_runner.h"

#include <windows.h>

namespace kr_test {

struct RunningProgram::State {
    HANDLE process = nullptr;
};

RunningProgram::RunningProgram(const std::vector<std::string>& arguments)
    : m_state(std::make_unique<State>()) {
    std::wstring line = L"\"" + installedProgram().wstring() + L"\"";
    for (const std::string& argument : arguments) {
        line += L" \"" + std::wstring(argument.begin(), argument.end()) + L"\"";
    }
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started{};
    if (CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, DETACHED_PROCESS, nullptr, nullptr,
                       &startup, &started) != 0) {
        CloseHandle(started.hThread);
        m_state->process = started.hProcess;
    }
}

RunningProgram::~RunningProgram() {
    kill();
}

bool RunningProgram::isRunning() const {
    return m_state->process != nullptr && WaitForSingleObject(m_state->process, 0) == WAIT_TIMEOUT;
}

long RunningProgram::number() const {
    return static_cast<long>(GetProcessId(m_state->process));
}

void RunningProgram::kill() {
    if (m_state->process != nullptr) {
        TerminateProcess(m_state->process, 1);
        WaitForSingleObject(m_state->process, INFINITE);
        CloseHandle(m_state->process);
        m_state->process = nullptr;
    }
}

} // namespace kr_test
