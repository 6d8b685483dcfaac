#pragma once

#include "common/platform/sync.h"
#include "common/platform/thread.h"
#include "common/tw_thread.h"
#include "tarnwell/reading_batch.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace tarnwell {

class CollectionClock;
class MessageReader;

/// A thread that reads messages, so that what the host does in between delays no read. It gets an empty batch with the
/// order to fill it, waits for the moment itself, and gives the batch back with its answer: no queue and no lock.
/// Threads: the host's, one order at a time. Between an order and finish() the batch is the worker's.
class ReadWorker {
public:
    ReadWorker(const MessageReader& reader, const CollectionClock& clock);
    ReadWorker(const ReadWorker&) = delete;
    ReadWorker& operator=(const ReadWorker&) = delete;
    /// Waits for the end of an order, if one is under way.
    ~ReadWorker();

    /// Starts the thread, pinned to @p processor if there is one. On 1 there is none, for the reason.
    int start(const std::optional<pwr::platform::ProcessorPlace>& processor, std::string& reason);

    /// Orders to read the messages with the trigger at tick @p at, or at once when that has passed.
    void read(const char* trigger, std::uint64_t at, ReadingBatch& batch);
    /// Orders to drain, at tick @p at, what was recorded before tick @p until.
    void drain(std::uint64_t at, std::uint64_t until, ReadingBatch& batch);

    /// Whoever still waits for the moment of an order gives it up.
    void cancel();

    /// Waits for the order's end. True when it was carried out, false when it was cancelled before.
    bool finish();

private:
    struct Order;
    class Actor;
    void send_i(int sig, const Order& order);

    std::unique_ptr<Actor> m_actor;
    std::unique_ptr<pwr::platform::ProcessorNumber> m_processor;
    std::unique_ptr<pwr::TWThread> m_thread;
    int m_orderId = 0;
    bool m_isBusy = false;
};

} // namespace tarnwell
