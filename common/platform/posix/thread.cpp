#include "common/platform/thread.h"

#include <cerrno>
#include <csignal>
#include <pthread.h>
#include <sched.h>
#include <system_error>
#include <vector>

namespace pwr::platform {
namespace {

constexpr unsigned PROCESSORS_PER_GROUP = 64;
// The system refuses sets smaller than its own, whose size it does not tell.
constexpr std::size_t FIRST_SIZE = 128;
constexpr std::size_t LARGEST_SIZE = 1U << 17U;

} // namespace

ProcessorPlace placeOf(const PROCESSOR_NUMBER& processor) {
    return {processor.Group, processor.Number};
}

ProcessorNumber::ProcessorNumber(ProcessorPlace place)
    : m_record(new PROCESSOR_NUMBER{place.group, place.number, 0},
               [](PROCESSOR_NUMBER* record) { delete record; }) {}

ProcessorNumber::~ProcessorNumber() = default;

struct Thread::State {
    static void* enter(void* self) {
        auto& state = *static_cast<State*>(self);
        state.entry(state.argument);
        return nullptr;
    }

    Entry entry;
    void* argument;
    pthread_t handle{};
};

Thread::Thread() = default;
Thread::~Thread() = default;

unsigned Thread::start(Entry entry, void* argument) {
    auto state = std::make_unique<State>(State{entry, argument});
    // A new thread takes over which signals are held back.
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    const int error = pthread_create(&state->handle, nullptr, State::enter, state.get());
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    if (error == 0) {
        m_state = std::move(state);
    }
    return static_cast<unsigned>(error);
}

unsigned Thread::pinTo(ProcessorPlace place) {
    const std::size_t processor =
        std::size_t{place.group} * PROCESSORS_PER_GROUP + place.number % PROCESSORS_PER_GROUP;
    constexpr std::size_t bits = 8 * sizeof(unsigned long);
    std::vector<unsigned long> set(processor / bits + 1);
    set[processor / bits] = 1UL << (processor % bits);
    return static_cast<unsigned>(pthread_setaffinity_np(m_state->handle, set.size() * sizeof(unsigned long),
                                                        reinterpret_cast<const cpu_set_t*>(set.data())));
}

unsigned Thread::checkPlace() const {
    int error = EINVAL;
    for (std::size_t size = FIRST_SIZE; error == EINVAL && size <= LARGEST_SIZE; size *= 2) {
        std::vector<unsigned long> set(size / sizeof(unsigned long));
        error = pthread_getaffinity_np(m_state->handle, size, reinterpret_cast<cpu_set_t*>(set.data()));
    }
    return static_cast<unsigned>(error);
}

unsigned Thread::join() {
    if (m_state == nullptr) {
        return 0;
    }
    const int error = pthread_join(m_state->handle, nullptr);
    // A thread cannot wait for itself: then it still needs what it runs on.
    if (error != EDEADLK) {
        m_state.reset();
    }
    return static_cast<unsigned>(error);
}

std::string systemErrorText(unsigned error) {
    return std::generic_category().message(static_cast<int>(error));
}

} // namespace pwr::platform
