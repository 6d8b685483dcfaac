#pragma once

#include "common/export.h"
#include "common/pw_types.h"

#include <memory>
#include <string>

namespace pwr::platform {

/// A logical processor: its group and its number within the group, 64 of them in each. Systems without groups count
/// all processors through, so that number n is in group n / 64.
struct ProcessorPlace {
    pw_u16_t group = 0;
    pw_u8_t number = 0;
};

KRCOMMON_API ProcessorPlace placeOf(const PROCESSOR_NUMBER& processor);

/// The system's own record of a place, for code that must not see the system's headers.
class KRCOMMON_API ProcessorNumber {
public:
    explicit ProcessorNumber(ProcessorPlace place);
    ProcessorNumber(const ProcessorNumber&) = delete;
    ProcessorNumber& operator=(const ProcessorNumber&) = delete;
    ~ProcessorNumber();
    /// Lives as long as this object.
    const PROCESSOR_NUMBER* get() const { return m_record.get(); }

private:
    std::unique_ptr<PROCESSOR_NUMBER, void (*)(PROCESSOR_NUMBER*)> m_record;
};

/// A thread of the operating system. Requests to stop (interrupts) never come to it, so that they find the thread that
/// waits for them. Errors are the system's numbers, 0 for success; systemErrorText() has the words.
/// Threads: one owner at a time.
class KRCOMMON_API Thread {
public:
    using Entry = unsigned (*)(void* argument);

    Thread();
    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;
    /// The thread must have been joined.
    ~Thread();

    unsigned start(Entry entry, void* argument);
    bool isThere() const { return m_state != nullptr; }

    /// Keeps the thread on one logical processor.
    unsigned pinTo(ProcessorPlace place);
    /// Whether the thread can tell where it may run.
    unsigned checkPlace() const;

    /// Waits until the thread has ended and releases it; without a thread there is nothing to do.
    unsigned join();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

/// The system's words for one of its error numbers.
KRCOMMON_API std::string systemErrorText(unsigned error);

} // namespace pwr::platform
