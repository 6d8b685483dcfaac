#include "common/platform/interrupt.h"

#include "common/platform/child_process.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <ctime>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace pwr::platform {
namespace {

constexpr int ABORT_EXIT_CODE = 130;
constexpr std::uint64_t NANOSECONDS_PER_SECOND = 1000000000;
// Launchers tell the process and then its whole group: that is one request, which comes twice within microseconds.
constexpr std::uint64_t ONE_REQUEST_NANOSECONDS = 100000000;

std::atomic<std::uint64_t> g_firstInterrupt{0}; ///< when it came; 0: there was none
std::atomic<bool> g_isFromTerminal{false};
// A byte in the pipe outlives the handler, so a signal between the check and the sleep is not lost.
std::atomic<int> g_wakeWriteEnd{-1};
int g_wakeReadEnd = -1;

std::uint64_t monotonicNanoseconds() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<std::uint64_t>(now.tv_sec) * NANOSECONDS_PER_SECOND +
           static_cast<std::uint64_t>(now.tv_nsec);
}

/// One request to stop is obeyed, a later one aborts.
void takeInterrupt() {
    const std::uint64_t now = monotonicNanoseconds();
    std::uint64_t first = 0; // several threads may be in here at once
    if (!g_firstInterrupt.compare_exchange_strong(first, now) && now > first + ONE_REQUEST_NANOSECONDS) {
        _exit(ABORT_EXIT_CODE);
    }
}

extern "C" void onSignal(int signal, siginfo_t* info, void* /*context*/) {
    const int savedErrno = errno;
    if (signal != SIGCHLD) {
        // What a process sends has a code of 0 or below, what the terminal sends a positive one.
        g_isFromTerminal = info->si_code > 0;
        takeInterrupt();
    }
    const char byte = 1;
    if (write(g_wakeWriteEnd.load(), &byte, 1) < 0) {
        // A full pipe wakes the reader just as well.
    }
    errno = savedErrno;
}

} // namespace

int installInterruptHandler() {
    int ends[2] = {-1, -1};
    if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) {
        return 1;
    }
    g_wakeReadEnd = ends[0];
    g_wakeWriteEnd = ends[1];
    struct sigaction action {};
    action.sa_sigaction = onSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART | SA_NOCLDSTOP | SA_SIGINFO;
    int result = 0;
    for (const int signal : {SIGINT, SIGTERM, SIGCHLD}) {
        result |= sigaction(signal, &action, nullptr) == 0 ? 0 : 1;
    }
    return result;
}

unsigned interruptCount() {
    return g_firstInterrupt.load() == 0 ? 0 : 1;
}

bool isInterruptFromTerminal() {
    return g_isFromTerminal.load();
}

void waitForEvent(std::uint64_t nanoseconds, ChildProcess* child) {
    if (interruptCount() > 0 || (child != nullptr && child->hasEnded())) {
        return;
    }
    timespec wait{};
    wait.tv_sec = static_cast<time_t>(nanoseconds / NANOSECONDS_PER_SECOND);
    wait.tv_nsec = static_cast<long>(nanoseconds % NANOSECONDS_PER_SECOND);
    pollfd end{g_wakeReadEnd, POLLIN, 0};
    const nfds_t ends = g_wakeReadEnd < 0 ? 0 : 1;
    if (ppoll(&end, ends, &wait, nullptr) > 0) {
        // A child's end must not keep waking the later waits.
        char bytes[64];
        while (read(g_wakeReadEnd, bytes, sizeof bytes) > 0) {}
    }
}

} // namespace pwr::platform
