#include "common/platform/child_process.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace pwr::platform {
namespace {

constexpr int kSignalExitBase = 128;

int exitCodeOf(int status) {
    return WIFSIGNALED(status) ? kSignalExitBase + WTERMSIG(status) : WEXITSTATUS(status);
}

[[noreturn]] void becomeCommand(const std::vector<char*>& arguments, int errorPipe) {
    for (const int own : {SIGINT, SIGTERM, SIGCHLD, SIGPIPE, SIGXFSZ}) {
        signal(own, SIG_DFL);
    }
    execvp(arguments[0], arguments.data());
    const int error = errno;
    if (write(errorPipe, &error, sizeof error) < 0) {
        // The parent then sees an ended child instead of the reason.
    }
    _exit(127);
}

} // namespace

struct ChildProcess::State {
    pid_t pid = -1;
    bool ended = false;
    int exitCode = 0;
};

ChildProcess::ChildProcess(std::unique_ptr<State> state) : m_state(std::move(state)) {}
ChildProcess::~ChildProcess() = default;

std::unique_ptr<ChildProcess> ChildProcess::start(const std::vector<std::string>& command,
                                                  std::string& reason) {
    if (command.empty()) {
        reason = "no command given";
        return nullptr;
    }
    std::vector<std::string> words = command;
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);

    // Closed by a successful exec, so that a failing one can be told from a command that ends quickly.
    int ends[2] = {-1, -1};
    if (pipe2(ends, O_CLOEXEC) != 0) {
        reason = std::strerror(errno);
        return nullptr;
    }
    const pid_t pid = fork();
    if (pid == 0) {
        becomeCommand(arguments, ends[1]);
    }
    const int forkError = errno;
    close(ends[1]);
    int execError = pid < 0 ? forkError : 0;
    if (pid > 0) {
        const ssize_t got = read(ends[0], &execError, sizeof execError);
        execError = got == static_cast<ssize_t>(sizeof execError) ? execError : 0;
    }
    close(ends[0]);
    if (execError != 0) {
        if (pid > 0) {
            waitpid(pid, nullptr, 0);
        }
        reason = std::strerror(execError);
        return nullptr;
    }
    auto state = std::make_unique<State>();
    state->pid = pid;
    return std::unique_ptr<ChildProcess>(new ChildProcess(std::move(state)));
}

bool ChildProcess::hasEnded() {
    int status = 0;
    if (!m_state->ended && waitpid(m_state->pid, &status, WNOHANG) == m_state->pid) {
        m_state->ended = true;
        m_state->exitCode = exitCodeOf(status);
    }
    return m_state->ended;
}

int ChildProcess::wait() {
    int status = 0;
    while (!m_state->ended) {
        if (waitpid(m_state->pid, &status, 0) == m_state->pid) {
            m_state->ended = true;
            m_state->exitCode = exitCodeOf(status);
        } else if (errno != EINTR) {
            m_state->ended = true;
        }
    }
    return m_state->exitCode;
}

void ChildProcess::interrupt() {
    if (!hasEnded()) {
        kill(m_state->pid, SIGINT);
    }
}

void* ChildProcess::systemHandle() const {
    return nullptr;
}

} // namespace pwr::platform
