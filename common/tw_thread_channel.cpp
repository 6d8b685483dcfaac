#include "common/plugin/logger.h"
#include "common/tw_thread.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace pwr {
namespace {

constexpr const char* c_debugTag = "tw-thread";

struct Block {
    std::unique_ptr<char[]> bytes;
    std::size_t size = 0;
};

/// The bytes of a message that are queued: no reader takes a payload that is too large, so its header goes alone.
std::size_t queuedSizeOf(const TWThreadMessage& message) {
    return sizeof message + (message.size > TWThread::MAX_PAYLOAD ? 0 : message.size);
}

Block blockOf(const void* bytes, std::size_t size) {
    Block block{std::unique_ptr<char[]>(new char[size]), size};
    std::memcpy(block.bytes.get(), bytes, size);
    return block;
}

/// A queue whose place is used from the start again whenever it runs empty: a channel mostly holds one message.
class BlockQueue {
public:
    bool isEmpty() const { return m_first == m_blocks.size(); }
    void push(Block block) { m_blocks.push_back(std::move(block)); }
    Block pop() {
        Block block = std::move(m_blocks[m_first++]);
        if (isEmpty()) {
            m_blocks.clear();
            m_first = 0;
        } else if (m_first >= LARGEST_GAP && m_first * 2 >= m_blocks.size()) {
            m_blocks.erase(m_blocks.begin(), m_blocks.begin() + static_cast<std::ptrdiff_t>(m_first));
            m_first = 0;
        }
        return block;
    }

private:
    // A queue that never runs empty gives back what it has read now and then.
    static constexpr std::size_t LARGEST_GAP = 64;

    std::vector<Block> m_blocks;
    std::size_t m_first = 0;
};

} // namespace

/// One direction. What both sides write stands together, so that it travels in few cache lines.
class alignas(64) TWThread::Channel::Side {
public:
    /// The bytes behind the header, if there are any, become a block of their own.
    bool write(const void* message, std::size_t size) {
        const std::size_t headerSize = std::min(size, sizeof(TWThreadMessage));
        Block header = blockOf(message, headerSize);
        Block payload;
        if (size > headerSize) {
            payload = blockOf(static_cast<const char*>(message) + headerSize, size - headerSize);
        }
        bool isAwaited = false;
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_queue.push(std::move(header));
            if (payload.size > 0) {
                m_queue.push(std::move(payload));
            }
            isAwaited = m_event.raise();
        }
        // Who has read the message may end the channel. Behind the lock, as who is woken would only wait for it.
        if (isAwaited) {
            m_event.wakeOne();
        }
        return true;
    }

    /// Held while a message is read: its blocks are for one reader.
    std::mutex& readersTurn() { return m_readersTurn; }

    /// The front block; bytes that it does not have are zeros. False when the side was closed and is empty.
    bool read(void* bytes, std::size_t size) {
        Block block;
        Take taken = Take::NOTHING;
        while (taken == Take::NOTHING) {
            taken = take_i(block);
        }
        const std::size_t copied = std::min(size, block.size);
        if (copied > 0) {
            std::memcpy(bytes, block.bytes.get(), copied);
        }
        if (size > copied) {
            std::memset(static_cast<char*>(bytes) + copied, 0, size - copied);
        }
        return taken == Take::BLOCK;
    }

    void close() {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_isClosed = true;
        }
        m_event.set();
    }

private:
    enum class Take : std::uint8_t { NOTHING, BLOCK, CLOSED };

    /// Waits for the event. Another reader may have been quicker: then there is nothing, and it is waited for again.
    Take take_i(Block& block) {
        m_event.wait();
        const std::lock_guard<std::mutex> lock(m_mutex);
        const Take taken = !m_queue.isEmpty() ? Take::BLOCK : m_isClosed ? Take::CLOSED : Take::NOTHING;
        if (taken == Take::BLOCK) {
            block = m_queue.pop();
        }
        if (!m_queue.isEmpty() || m_isClosed) {
            m_event.set(); // the next reader must not be stuck
        }
        return taken;
    }

    std::mutex m_mutex;
    BlockQueue m_queue;
    platform::AutoResetEvent m_event;
    bool m_isClosed = false;
    std::mutex m_readersTurn;
};

TWThread::Channel::Channel() = default;
TWThread::Channel::~Channel() = default;

bool TWThread::Channel::init() {
    if (m_requests != nullptr) {
        return false;
    }
    m_requests = std::make_unique<Side>();
    m_responses = std::make_unique<Side>();
    return true;
}

void TWThread::Channel::destroy() {
    m_requests.reset();
    m_responses.reset();
}

bool TWThread::Channel::writeRequestMessage(const TWThreadMessage* message) {
    return message != nullptr && writeRequest_i(message, queuedSizeOf(*message));
}

bool TWThread::Channel::writeResponseMessage(const TWThreadMessage* message) {
    return message != nullptr && writeResponse_i(message, queuedSizeOf(*message));
}

bool TWThread::Channel::readRequestMessage(std::vector<char>& message) {
    return readMessage_i(m_requests.get(), message, "WARNING: couldn't read request message payload!\n",
                         [this](void* block, std::size_t size) { return readRequest_i(block, size); });
}

bool TWThread::Channel::readResponseMessage(std::vector<char>& message) {
    return readMessage_i(m_responses.get(), message, "WARNING: couldn't read response message payload!\n",
                         [this](void* block, std::size_t size) { return readResponse_i(block, size); });
}

void TWThread::Channel::closeResponses() {
    if (m_responses != nullptr) {
        m_responses->close();
    }
}

template <class ReadBlock>
bool TWThread::Channel::readMessage_i(Side* side, std::vector<char>& message, const char* payloadWarning,
                                      const ReadBlock& readBlock) {
    if (side == nullptr) {
        return false;
    }
    const std::lock_guard<std::mutex> turn(side->readersTurn());
    TWThreadMessage header{};
    if (!readBlock(&header, sizeof header)) {
        return false;
    }
    if (header.size > MAX_PAYLOAD) {
        logTaggedWarning(c_debugTag, "WARNING: invalid payload size %u received!\n", header.size);
        return false;
    }
    message.resize(sizeof header + header.size);
    std::memcpy(message.data(), &header, sizeof header);
    if (header.size > 0 && !readBlock(message.data() + sizeof header, header.size)) {
        logTaggedWarning(c_debugTag, "%s", payloadWarning);
        return false;
    }
    return true;
}

bool TWThread::Channel::writeRequest_i(const void* message, std::size_t size) {
    return m_requests != nullptr && m_requests->write(message, size);
}

bool TWThread::Channel::readRequest_i(void* block, std::size_t size) {
    return m_requests != nullptr && m_requests->read(block, size);
}

bool TWThread::Channel::writeResponse_i(const void* message, std::size_t size) {
    return m_responses != nullptr && m_responses->write(message, size);
}

bool TWThread::Channel::readResponse_i(void* block, std::size_t size) {
    return m_responses != nullptr && m_responses->read(block, size);
}

} // namespace pwr
