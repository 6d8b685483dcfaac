#include "common/tw_thread.h"

#include "common/plugin/logger.h"

#include <algorithm>
#include <cstring>
#include <exception>

namespace pwr {
namespace {

constexpr const char* c_debugTag = "tw-thread";

// Of the whole process, so that no two messages that wait for responses have one id.
std::atomic<pw_u32_t> g_lastMessageId{0};

TWThreadMessage headerOf(const std::vector<char>& message) {
    TWThreadMessage header{};
    std::memcpy(&header, message.data(), sizeof header);
    return header;
}

} // namespace

TWThreadActor::~TWThreadActor() = default;

TWThread::TWThread(TWThreadActor& actor, const PROCESSOR_NUMBER* affinity, void (*onExit)())
    : m_actor(actor), m_channel(std::make_unique<Channel>()), m_onExit(onExit) {
    if (affinity != nullptr) {
        m_affinity = platform::placeOf(*affinity);
    }
}

TWThread::~TWThread() {
    if (isRunning()) {
        kill();
    }
    join();
}

int TWThread::init() {
    if (m_state != TWThreadState::NONE) {
        logTaggedWarning(c_debugTag, "WARNING: invalid thread state %u!\n",
                         static_cast<unsigned>(m_state.load()));
        return -1;
    }
    m_channel->destroy(); // of an earlier try, which the actor left with an exception
    m_channel->init();
    if (m_actor.init() != 0) {
        m_channel->destroy();
        return -1;
    }
    m_state = TWThreadState::INITIALISED;
    return 0;
}

int TWThread::start() {
    if (m_state != TWThreadState::INITIALISED) {
        logTaggedWarning(c_debugTag, "WARNING: invalid thread state %u!\n",
                         static_cast<unsigned>(m_state.load()));
        return -1;
    }
    m_state = TWThreadState::RUNNING;
    if (const unsigned error = m_thread.start(run, this); error != 0) {
        m_state = TWThreadState::INITIALISED;
        logTaggedWarning(c_debugTag, "Thread creation failed.\n: errnum=%s (%u)\n",
                         platform::systemErrorText(error).c_str(), error);
        return -1;
    }
    if (m_affinity) {
        if (const unsigned error = m_thread.pinTo(*m_affinity); error != 0) {
            logTaggedWarning(c_debugTag, "WARNING: Thread affinity attempt failed. Error: %u!\n", error);
            abandon_i();
            return -1;
        }
        if (const unsigned error = m_thread.checkPlace(); error != 0) {
            logTaggedWarning(c_debugTag, "WARNING: Retrieving thread affinity info failed. Error: %u!\n",
                             error);
        }
    }
    m_mayRun.set();
    return 0;
}

/// Ends a thread that has not begun yet.
void TWThread::abandon_i() {
    m_state = TWThreadState::STOPPING;
    m_mayRun.set();
    join();
}

int TWThread::kill() {
    if (!isRunning()) {
        logTaggedWarning(c_debugTag, "WARNING: killing a thread that isn't running?!\n");
        return -1;
    }
    return signal_i(TWThreadMessage::KILL, 0, 0, nullptr, true, true);
}

int TWThread::join() {
    if (const unsigned error = m_thread.join(); error != 0) {
        logTaggedWarning(c_debugTag,
                         "WARNING: failed to join TWThread and close the thread handle, error=%u\n", error);
    }
    return 0;
}

int TWThread::timedJoin(long /*milliseconds*/) {
    return join();
}

int TWThread::signal(int sig, bool requireResponse, bool block) {
    return signal(sig, 0, nullptr, requireResponse, block);
}

int TWThread::signal(int sig, std::size_t size, const void* payload, bool requireResponse, bool block) {
    return signal_i(TWThreadMessage::ORDINARY, sig, size, payload, requireResponse, block);
}

int TWThread::signal_i(int kind, int sig, std::size_t size, const void* payload, bool requireResponse,
                       bool block) {
    if (block && !requireResponse) {
        logTaggedWarning(c_debugTag, "WARNING: cannot block if you don't require a response!\n");
        block = false;
    }
    if (size > MAX_PAYLOAD) {
        // Refused here, where only the sender is hurt: the reader could not go on behind it.
        logTaggedWarning(c_debugTag, "WARNING: invalid payload size %u received!\n",
                         static_cast<unsigned>(std::min<std::size_t>(size, UINT32_MAX)));
        return -1;
    }
    pw_u32_t id = 0;
    if (requireResponse) {
        id = (g_lastMessageId.fetch_add(1) + 1) & TWThreadMessage::ID_BITS;
    }
    const TWThreadMessage header{requireResponse ? id | TWThreadMessage::RESPONSE_REQUIRED : 0, kind, sig,
                                 static_cast<pw_u32_t>(size)};
    bool isWritten = false;
    if (size == 0) {
        isWritten = m_channel->writeRequestMessage(&header);
    } else {
        std::vector<TWThreadMessage> message(1 + (size + sizeof header - 1) / sizeof header);
        message.front() = header;
        if (payload != nullptr) {
            std::memcpy(&message[1], payload, size);
        }
        isWritten = m_channel->writeRequestMessage(message.data());
    }
    if (!isWritten) {
        return -1;
    }
    const int number = static_cast<int>(id);
    return block ? readResponse(number) : number;
}

int TWThread::readResponse(int id) {
    std::vector<char> message;
    // What a signal returns that failed is no id: nobody would ever answer it.
    while (id >= 0 && m_channel->readResponseMessage(message)) {
        const TWThreadMessage response = headerOf(message);
        if ((response.idAndFlag & TWThreadMessage::ID_BITS) == static_cast<pw_u32_t>(id)) {
            return response.signal;
        }
    }
    logTaggedWarning(c_debugTag, "WARNING: couldn't read response!\n");
    return -1;
}

unsigned TWThread::run(void* thread) {
    auto& self = *static_cast<TWThread*>(thread);
    self.m_mayRun.wait();
    int code = -1;
    try {
        code = self.run_i();
    } catch (const std::exception& fault) {
        logError("ERROR: a thread ends, because its actor failed: %s\n", fault.what());
    } catch (...) {
        logError("ERROR: a thread ends, because its actor failed!\n");
    }
    // Whatever ended the loop, nobody may wait for an answer any more.
    self.m_state = TWThreadState::STOPPING;
    self.m_channel->closeResponses();
    return static_cast<unsigned>(code);
}

int TWThread::run_i() {
    std::vector<char> message;
    while (isRunning()) {
        if (!m_channel->readRequestMessage(message)) {
            return -1;
        }
        if (!serve_i(message)) {
            logTaggedWarning(c_debugTag, "WARNING: couldn't write response in run_i!\n");
        }
    }
    return 0;
}

/// Carries out one request. False when the answer could not be written.
bool TWThread::serve_i(std::vector<char>& message) {
    TWThreadMessage header = headerOf(message);
    int result = 0;
    if (header.kind == TWThreadMessage::KILL) {
        m_state = TWThreadState::STOPPING;
        result = m_actor.handleKill();
    } else {
        const char* const payload = header.size == 0 ? nullptr : message.data() + sizeof header;
        if (m_actor.handleSignal(header.signal, header.size, payload, result) == 1) {
            m_state = TWThreadState::STOPPING;
            if (m_onExit != nullptr) {
                m_onExit();
            }
        }
    }
    header.signal = result;
    header.size = 0;
    return (header.idAndFlag & TWThreadMessage::RESPONSE_REQUIRED) == 0 ||
           m_channel->writeResponseMessage(&header);
}

} // namespace pwr
