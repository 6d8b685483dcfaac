#include "common/platform/interrupt.h"

#include "common/platform/child_process.h"
#include "common/platform/win32/wide_text.h"

#include <atomic>
#include <cstdlib>

namespace pwr::platform {
namespace {

constexpr unsigned ABORT_EXIT_CODE = 130;
constexpr std::uint64_t NANOSECONDS_PER_MILLISECOND = 1000000;
constexpr std::uint64_t LONGEST_WAIT_MILLISECONDS = 0x7FFFFFFF;

std::atomic<unsigned> g_interrupts{0};
std::atomic<HANDLE> g_wakeEvent{nullptr};

BOOL WINAPI onConsoleEvent(DWORD event) {
    if (g_interrupts.fetch_add(1) > 0) {
        TerminateProcess(GetCurrentProcess(), ABORT_EXIT_CODE);
    }
    SetEvent(g_wakeEvent.load());
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) {
        Sleep(INFINITE); // a window closes or the user leaves: the process would end when this returns
    }
    return TRUE;
}

} // namespace

int installInterruptHandler() {
    g_wakeEvent = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    return g_wakeEvent.load() != nullptr && SetConsoleCtrlHandler(onConsoleEvent, TRUE) != 0 ? 0 : 1;
}

unsigned interruptCount() {
    return g_interrupts.load();
}

bool isInterruptFromTerminal() {
    return interruptCount() > 0;
}

void waitForEvent(std::uint64_t nanoseconds, ChildProcess* child) {
    if (interruptCount() > 0) {
        return;
    }
    std::uint64_t milliseconds =
        (nanoseconds + NANOSECONDS_PER_MILLISECOND / 2) / NANOSECONDS_PER_MILLISECOND;
    milliseconds = milliseconds < LONGEST_WAIT_MILLISECONDS ? milliseconds : LONGEST_WAIT_MILLISECONDS;
    HANDLE handles[2] = {};
    DWORD count = 0;
    if (g_wakeEvent.load() != nullptr) {
        handles[count++] = g_wakeEvent.load();
    }
    if (child != nullptr) {
        handles[count++] = child->systemHandle();
    }
    if (count == 0) {
        Sleep(static_cast<DWORD>(milliseconds));
    } else {
        WaitForMultipleObjects(count, handles, FALSE, static_cast<DWORD>(milliseconds));
    }
}

} // namespace pwr::platform
