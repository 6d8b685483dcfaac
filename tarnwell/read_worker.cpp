#include "tarnwell/read_worker.h"

#include "tarnwell/collection_clock.h"
#include "tarnwell/message_reader.h"

#include <cstring>

namespace tarnwell {
namespace {

constexpr int kRead = 1;
constexpr int kDrain = 2;

constexpr int kDone = 0;
constexpr int kCancelled = 1;

} // namespace

/// The payload of both signals.
struct ReadWorker::Order {
    const char* trigger;
    std::uint64_t at;
    std::uint64_t until;
    ReadingBatch* batch;
};

class ReadWorker::Actor : public pwr::TWThreadActor {
public:
    Actor(const MessageReader& reader, const CollectionClock& clock) : m_reader(reader), m_clock(clock) {}

    int handleSignal(int sig, std::size_t /*size*/, const void* payload, int& result) override {
        Order order{};
        std::memcpy(&order, payload, sizeof order);
        if (!await_i(order.at)) {
            result = kCancelled;
            return 0;
        }
        if (sig == kRead) {
            m_reader.read(order.trigger, m_clock.source(), *order.batch);
        } else {
            m_reader.drain(order.until, *order.batch);
        }
        result = kDone;
        return 0;
    }
    int handleKill() override { return 0; }
    int init() override { return 0; }

    void allow() { m_isCancelled = false; }
    void cancel() {
        m_isCancelled = true;
        m_wake.set();
    }

private:
    bool await_i(std::uint64_t at) {
        while (!m_isCancelled) {
            const std::uint64_t left = m_clock.nanosecondsUntil(at);
            if (left == 0) {
                return true;
            }
            m_wake.waitFor(left);
        }
        return false;
    }

    const MessageReader& m_reader;
    const CollectionClock& m_clock;
    std::atomic<bool> m_isCancelled{false};
    pwr::platform::AutoResetEvent m_wake;
};

ReadWorker::ReadWorker(const MessageReader& reader, const CollectionClock& clock)
    : m_actor(std::make_unique<Actor>(reader, clock)) {}

ReadWorker::~ReadWorker() {
    if (m_thread != nullptr) {
        cancel();
        m_thread.reset();
    }
}

int ReadWorker::start(const std::optional<pwr::platform::ProcessorPlace>& processor, std::string& reason) {
    if (processor) {
        m_processor = std::make_unique<pwr::platform::ProcessorNumber>(*processor);
    }
    m_thread = std::make_unique<pwr::TWThread>(*m_actor, m_processor ? m_processor->get() : nullptr, nullptr);
    if (m_thread->init() == 0 && m_thread->start() == 0) {
        return 0;
    }
    m_thread.reset();
    reason = processor
                 ? "processor " + std::to_string(processor->group) + ":" + std::to_string(processor->number) +
                       " cannot read the counters: it is not there, is offline, or is not for this "
                       "program; give --poll-processor another one, or none"
                 : std::string("the system starts no further thread");
    return 1;
}

void ReadWorker::read(const char* trigger, std::uint64_t at, ReadingBatch& batch) {
    send_i(kRead, {trigger, at, 0, &batch});
}

void ReadWorker::drain(std::uint64_t at, std::uint64_t until, ReadingBatch& batch) {
    send_i(kDrain, {nullptr, at, until, &batch});
}

void ReadWorker::send_i(int sig, const Order& order) {
    m_actor->allow();
    m_orderId = m_thread->signal(sig, sizeof order, &order, true, false);
    m_isBusy = true;
}

void ReadWorker::cancel() {
    m_actor->cancel();
}

bool ReadWorker::finish() {
    if (!m_isBusy) {
        return false;
    }
    m_isBusy = false;
    return m_thread->readResponse(m_orderId) == kDone;
}

} // namespace tarnwell
