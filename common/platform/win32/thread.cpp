#include "common/platform/thread.h"

#include "common/platform/win32/wide_text.h"

#include <process.h>

namespace pwr::platform {
namespace {

constexpr unsigned PROCESSORS_PER_GROUP = 64;

} // namespace

ProcessorPlace placeOf(const PROCESSOR_NUMBER& processor) {
    return {processor.Group, processor.Number};
}

ProcessorNumber::ProcessorNumber(ProcessorPlace place)
    : m_record(new PROCESSOR_NUMBER{place.group, place.number, 0},
               [](PROCESSOR_NUMBER* record) { delete record; }) {}

ProcessorNumber::~ProcessorNumber() = default;

struct Thread::State {
    static unsigned __stdcall enter(void* self) {
        auto& state = *static_cast<State*>(self);
        return state.entry(state.argument);
    }

    Entry entry;
    void* argument;
    HANDLE handle = nullptr;
};

Thread::Thread() = default;
Thread::~Thread() = default;

unsigned Thread::start(Entry entry, void* argument) {
    auto state = std::make_unique<State>(State{entry, argument});
    state->handle =
        reinterpret_cast<HANDLE>(_beginthreadex(nullptr, 0, State::enter, state.get(), 0, nullptr));
    if (state->handle == nullptr) {
        const DWORD error = GetLastError();
        return error == 0 ? ERROR_NOT_ENOUGH_MEMORY : error;
    }
    m_state = std::move(state);
    return 0;
}

unsigned Thread::pinTo(ProcessorPlace place) {
    GROUP_AFFINITY affinity{};
    affinity.Group = place.group;
    affinity.Mask = static_cast<KAFFINITY>(1) << (place.number % PROCESSORS_PER_GROUP);
    return SetThreadGroupAffinity(m_state->handle, &affinity, nullptr) != 0 ? 0 : GetLastError();
}

unsigned Thread::checkPlace() const {
    GROUP_AFFINITY affinity{};
    return GetThreadGroupAffinity(m_state->handle, &affinity) != 0 ? 0 : GetLastError();
}

unsigned Thread::join() {
    if (m_state == nullptr) {
        return 0;
    }
    // A thread cannot wait for itself: then it still needs what it runs on.
    if (GetThreadId(m_state->handle) == GetCurrentThreadId()) {
        return ERROR_POSSIBLE_DEADLOCK;
    }
    WaitForSingleObject(m_state->handle, INFINITE);
    const DWORD error = CloseHandle(m_state->handle) != 0 ? 0 : GetLastError();
    m_state.reset();
    return error == ERROR_INVALID_HANDLE ? 0 : error; // closed already is closed
}

std::string systemErrorText(unsigned error) {
    return errorText(error);
}

} // namespace pwr::platform
