#pragma once

#include "tarnwell/message_log.h"
#include "tarnwell/standard_streams.h"

#include <set>
#include <string>

class WriterPlugin;
class WriterStream;

namespace pwr {
class TWClockSource;
}

namespace tarnwell {

/// Fills the process-wide environment for one run and empties it again: loggers on the standard streams,
/// the default clock, the folder of the library, the result prefix, and the writer stream.
class HostEnvironment {
public:
    explicit HostEnvironment(const std::string& resultPrefix);
    HostEnvironment(const HostEnvironment&) = delete;
    HostEnvironment& operator=(const HostEnvironment&) = delete;
    ~HostEnvironment();

    /// Makes @p clock, which must outlive this object, the time base of everything.
    static void useClock(pwr::TWClockSource& clock);

    /// Where the library lies, with a separator at the end; plug-ins and configuration stand beside it.
    const std::string& folder() const;

    /// Makes the stream that results are pushed into, on the writers of @p writers, which must outlive it.
    void openStream(std::set<WriterPlugin*>& writers);
    WriterStream& stream() { return *m_stream; }
    void closeStream();

    /// True when something of the results could not be written to standard output.
    bool hasOutputFailed() const { return m_output.hasFailed(); }

private:
    StreamLogger m_output{stdout};
    MessageLogger m_errors;
    pwr::Logger m_discard;
    WriterStream* m_stream = nullptr;
};

} // namespace tarnwell
