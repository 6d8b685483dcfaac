#pragma once

#include "common/driver_interface.h"
#include "tarnwell/reading_batch.h"

#include <cstdint>
#include <string>
#include <vector>

class CollectorPlugin;

namespace pwr {
class InputMsg;
class MsgMetadata;
class TWClockSource;
} // namespace pwr

namespace tarnwell {

/// A message that is open, as far as reading needs to know.
struct OpenMessage {
    CollectorPlugin* collector;
    const pwr::MsgMetadata* metadata;
    const pwr::InputMsg* written; ///< to be written, not read; null for others
    int processor;                ///< that it is carried out on; -1 for any

    bool isRecording() const;
    id_config_t id() const;
};

/// Carries the open messages out. It touches no handle, and of the environment only what is fixed while a collection
/// runs, so it may work on any thread.
/// Threads: one call of read() and one of drain() at a time.
class MessageReader {
public:
    void add(const OpenMessage& message) { m_messages.push_back(message); }
    const std::vector<OpenMessage>& messages() const { return m_messages; }
    bool hasRecording() const;

    /// Executes every message that has the trigger, in the order of their numbers.
    void read(const std::string& trigger, const pwr::TWClockSource& clock, ReadingBatch& batch) const;

    /// Appends what messages with tracepoints recorded by themselves before tick @p until of the default clock.
    void drain(std::uint64_t until, ReadingBatch& batch) const;

private:
    static bool execute_i(const OpenMessage& message, ReadingBatch& batch);
    static bool drainOne_i(const OpenMessage& message, std::uint64_t until, ReadingBatch& batch);

    std::vector<OpenMessage> m_messages;
};

} // namespace tarnwell
