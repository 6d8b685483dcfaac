#pragma once

#include "common/export.h"
#include "common/plugin/collection_data.h"
#include "common/plugin/plugin.h"

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace pwr {
class InputMsg;
class Metadata;
class MsgMetadata;
class Operation;
class TWClockSource;
} // namespace pwr

/// Whether a message can be collected on this machine. Reason and fix are sentences for the user.
struct MessageAvailability {
    enum class State : std::uint8_t {
        AVAILABLE,
        ABSENT,   ///< nothing of it is here; without a reason, the message's own (ABSENT-REASON) is told
        NOT_HERE, ///< the collector has nothing to do with this machine, and nobody is told of the message
        INVALID   ///< the message's keys cannot be understood: an error of the hardware description
    };
    State state = State::AVAILABLE;
    std::string reason;
    std::string fix;
};

/// Reads counters of the machine. The host declares the messages, opens each, then has them read when
/// their triggers say so.
/// Threads: the host's thread, except read() and drain(), which may be called on a thread of their
///          own: they touch no handle, and nothing of the environment but logMessage().
class KRCOMMON_API CollectorPlugin : public Plugin {
public:
    explicit CollectorPlugin(const std::string& name);
    ~CollectorPlugin() override;

    /// The type words that name this collector in hardware descriptions.
    virtual std::vector<std::string> getCollectorTypes() const = 0;

    /// Appends the messages and metrics that the collector brings along itself. The base adds none.
    virtual int declare(std::vector<std::unique_ptr<pwr::Metadata>>& declarations);

    /// Makes a message ready to be read, and lists its instances with patterns expanded for this
    /// machine. 1 with a reason and a fix in `out` when it cannot be collected: others go on.
    virtual int open(const pwr::MsgMetadata& message, MessageInstances& out) = 0;

    /// Reads once. `out` comes empty but for the id in its header; it leaves with the timestamp and
    /// one value, or the note that it is missing, for each instance. Non-zero: nothing was read.
    virtual int read(const pwr::MsgMetadata& message, CollectionData& out) = 0;

    /// For sources that record by themselves: appends what was recorded before a tick of the default
    /// clock, in order of time. The base has nothing recorded.
    virtual int drain(const pwr::MsgMetadata& message, std::uint64_t untilTick,
                      std::vector<CollectionData>& out);

    /// Whether drain() gives anything: messages that are carried out at tracepoints need it. The base says no.
    virtual bool recordsByItself() const;

    /// Releases what open() took.
    virtual void close(const pwr::MsgMetadata& message);

    /// Sentences that the user should read with the results of what was closed; each is given once. The base has none.
    virtual std::vector<std::string> takeNotes();

    /// The clock that stamps the samples; null means the default clock. Not owned by the caller.
    virtual pwr::TWClockSource* getClockSource() const;

    /// Work at once, outside a collection: one operation with its argument, or a whole message, whose
    /// placeholders the pairs of name and value fill. The base warns and gives -1. Overriding one of two
    /// forms hides the other: bring it back with a using-declaration.
    virtual int doImmediateRead(pwr::Operation* operation, const std::string& argument);
    virtual int doImmediateWrite(pwr::Operation* operation, const std::string& argument);
    virtual int doImmediateRead(const pwr::InputMsg* message,
                                const std::vector<std::pair<std::string, std::string>>& values);
    virtual int doImmediateWrite(const pwr::InputMsg* message);

    /// Whether a message could be opened now. Asked of messages that nobody collects in the end, so it makes no
    /// handles and takes nothing. The base takes everything for available: open() has the last word.
    virtual MessageAvailability probe(const pwr::MsgMetadata& message);

    /// The same of a message that is written. The base takes it for available.
    virtual MessageAvailability probeWrite(const pwr::MsgMetadata& message);

    /// The files of the machine that a message reads, `*` for what varies in a path, so that a record of the machine
    /// can hold them. The base knows of none.
    virtual std::vector<std::string> getFiles(const pwr::MsgMetadata& message) const;
};
