#pragma once

#include "common/export.h"
#include "common/platform/sync.h"
#include "common/platform/thread.h"
#include "common/pw_types.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace pwr {

/// The head of every message between threads; the payload follows it directly.
struct TWThreadMessage {
    static constexpr pw_u32_t RESPONSE_REQUIRED = 0x80000000;
    static constexpr pw_u32_t ID_BITS = 0x7FFFFFFF;
    static constexpr pw_s32_t ORDINARY = 0;
    static constexpr pw_s32_t KILL = -1;

    pw_u32_t idAndFlag; ///< RESPONSE_REQUIRED and the id, which is 0 where no response is required
    pw_s32_t kind;      ///< ORDINARY or KILL
    pw_s32_t signal;    ///< of a request the signal's number, of a response the actor's result
    pw_u32_t size;      ///< bytes of payload behind the header; 0 in responses
};
static_assert(sizeof(TWThreadMessage) == 16);

/// What a TWThread works for. All but init() is called on that thread.
class KRCOMMON_API TWThreadActor {
public:
    virtual ~TWThreadActor();

    /// Carries out a signal; @p payload holds @p size bytes and ends with the call. @p result comes as 0 and goes back
    /// to the sender. 1 stops the thread after this signal was answered, anything else goes on. An exception is logged
    /// as an error and ends the thread, without an answer.
    virtual int handleSignal(int sig, std::size_t size, const void* payload, int& result) = 0;

    /// The last call before the thread ends because it was killed; the result goes to the killer.
    virtual int handleKill() = 0;

    /// Called by TWThread::init(), on its caller's thread. 0 for success; otherwise there will be no thread.
    virtual int init() = 0;
};

/// NONE is what a thread is in before init() succeeded.
enum class TWThreadState : std::uint8_t { NONE = 0, INITIALISED = 1, RUNNING = 2, STOPPING = 3 };

/// Runs an actor on a thread of the operating system; others send it numbered signals with or without payload, and
/// wait for the answer, fetch it later, or need none. Life: construct, init(), start(), signals, then kill() or a
/// stop by the actor, join(). A stopped thread is not started again.
/// Threads: any number may send. Responses have one reader at a time, since those of other ids are dropped: senders
///          that want responses take turns. init(), start() and join() belong to one owner.
/// Failure: -1 and a warning, which is logged at level 2 or with the debug tag "tw-thread".
class KRCOMMON_API TWThread {
public:
    /// The larger payload is refused, by senders and by readers.
    static constexpr std::size_t MAX_PAYLOAD = 0x100000;

    class Channel;

    /// @p affinity, which may be null and is copied, is the logical processor that the thread keeps to. @p onExit, which
    /// may be null, is called on the thread when the actor asks it to stop, before that request is answered.
    TWThread(TWThreadActor& actor, const PROCESSOR_NUMBER* affinity, void (*onExit)());
    TWThread(const TWThread&) = delete;
    TWThread& operator=(const TWThread&) = delete;
    /// Kills the thread if it runs, and waits for its end.
    ~TWThread();

    /// Makes the channel and initialises the actor. 0, or -1 when the actor does not want to.
    int init();

    /// Starts the thread, once. When it cannot be pinned to its processor it is ended before it carried out anything.
    int start();

    /// Lets the thread end after all that was sent before, and gives the actor's last result; -1 when it does not run.
    int kill();

    /// Waits for the end of the thread, without limit. Always 0.
    int join();
    /// The same: no limit is kept, because there is nothing safe to do with a thread that goes on.
    int timedJoin(long milliseconds);

    bool isRunning() const { return m_state.load() == TWThreadState::RUNNING; }
    bool isDead() const { return m_state.load() == TWThreadState::STOPPING; }

    /// Sends a signal, with a copy of @p size bytes at @p payload (zeros when it is null). With @p block the actor's
    /// result; without, but with @p requireResponse, the id for readResponse(); otherwise 0.
    int signal(int sig, bool requireResponse, bool block);
    int signal(int sig, std::size_t size, const void* payload, bool requireResponse, bool block);

    /// Waits for the response to the signal with this id, drops all others, and gives the actor's result. -1 when the
    /// thread ended without one.
    int readResponse(int id);

    /// The thread's entry; @p thread is the TWThread.
    static unsigned run(void* thread);

private:
    int run_i();
    bool serve_i(std::vector<char>& message);
    int signal_i(int kind, int sig, std::size_t size, const void* payload, bool requireResponse, bool block);
    void abandon_i();

    TWThreadActor& m_actor;
    std::atomic<TWThreadState> m_state{TWThreadState::NONE};
    std::unique_ptr<Channel> m_channel;
    platform::Thread m_thread;
    platform::AutoResetEvent m_mayRun; ///< the thread begins when it is where it belongs
    std::optional<platform::ProcessorPlace> m_affinity;
    void (*m_onExit)();
};

/// Two queues of byte blocks, one for requests and one for responses, each with a lock and an event. Header and payload
/// of a message are two blocks, which enter their queue together, so that senders cannot mix theirs.
/// Threads: any number on each side; each message goes to one reader.
/// Failure: false, with a warning where the message itself is wrong. Nothing works before init() and after destroy().
class KRCOMMON_API TWThread::Channel {
public:
    Channel();
    Channel(const Channel&) = delete;
    Channel& operator=(const Channel&) = delete;
    ~Channel();

    /// False when it was made already.
    bool init();
    /// Frees what is still queued. Nobody may be reading or writing.
    void destroy();

    /// Queue a message: the header and a copy of the payload behind it. Once it was read they no longer need the
    /// channel.
    bool writeRequestMessage(const TWThreadMessage* message);
    bool writeResponseMessage(const TWThreadMessage* message);

    /// Wait for a message and put it, header and payload, into @p message, whose memory is used again.
    bool readRequestMessage(std::vector<char>& message);
    bool readResponseMessage(std::vector<char>& message);

    /// No response will come any more: once the queued ones are read, readers fail instead of waiting.
    void closeResponses();

private:
    class Side;

    bool writeRequest_i(const void* message, std::size_t size);
    bool readRequest_i(void* block, std::size_t size);
    bool writeResponse_i(const void* message, std::size_t size);
    bool readResponse_i(void* block, std::size_t size);
    template <class ReadBlock>
    bool readMessage_i(Side* side, std::vector<char>& message, const char* payloadWarning,
                       const ReadBlock& readBlock);

    std::unique_ptr<Side> m_requests;
    std::unique_ptr<Side> m_responses;
};

} // namespace pwr
