#include "tests/tarnwell/running_program.h"

#include "tests/tarnwell/program_runner.h"

#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kr_test {

struct RunningProgram::State {
    pid_t pid = -1;
};

RunningProgram::RunningProgram(const std::vector<std::string>& arguments)
    : m_state(std::make_unique<State>()) {
    std::vector<std::string> words = arguments;
    words.insert(words.begin(), installedProgram().string());
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (std::string& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    m_state->pid = fork();
    if (m_state->pid == 0) {
        const int nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
        dup2(nothing, STDOUT_FILENO);
        dup2(nothing, STDERR_FILENO);
        execv(pointers[0], pointers.data());
        _exit(127);
    }
}

RunningProgram::~RunningProgram() {
    kill();
}

bool RunningProgram::isRunning() const {
    siginfo_t info{};
    return m_state->pid > 0 &&
           waitid(P_PID, static_cast<id_t>(m_state->pid), &info, WEXITED | WNOHANG | WNOWAIT) == 0 &&
           info.si_pid == 0;
}

long RunningProgram::number() const {
    return m_state->pid;
}

void RunningProgram::kill() {
    if (m_state->pid > 0) {
        ::kill(m_state->pid, SIGKILL);
        waitpid(m_state->pid, nullptr, 0);
        m_state->pid = -1;
    }
}

} // namespace kr_test
