#include "common/platform/child_process.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace pwr::platform {
namespace {

constexpr int SIGNAL_EXIT_BASE = 128;

int exitCodeOf(int status) {
    return WIFSIGNALED(status) ? SIGNAL_EXIT_BASE + WTERMSIG(status) : WEXITSTATUS(status);
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
    /// Asks once; false only while the command runs.
    bool reap(int options) {
        int status = 0;
        const pid_t answer = ended ? 0 : waitpid(pid, &status, options);
        if (answer == pid) {
            exitCode = exitCodeOf(status);
        }
        // Where the system keeps no record of ended commands it is gone as well, with its exit code.
        ended = ended || answer == pid || (answer < 0 && errno != EINTR);
        return ended;
    }

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
    arguments.reserve(words.size() + 1);
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
        ssize_t got = -1;
        do {
            got = read(ends[0], &execError, sizeof execError);
        } while (got < 0 && errno == EINTR);
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
    return m_state->reap(WNOHANG);
}

int ChildProcess::wait() {
    while (!m_state->reap(0)) {}
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
