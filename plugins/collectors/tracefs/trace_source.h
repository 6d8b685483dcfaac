#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "common/machine_files.h"

namespace tracefs {

/// Where the kernel shows its trace.
inline constexpr const char* TRACING_FOLDER = "/sys/kernel/tracing";

/// Why something cannot be traced, and what would mend it.
struct Refusal {
    std::string reason;
    std::string fix;
};

/// The pages of a trace, processor by processor: of the running kernel, or recorded.
class TraceSource {
public:
    TraceSource() = default;
    TraceSource(const TraceSource&) = delete;
    TraceSource& operator=(const TraceSource&) = delete;
    virtual ~TraceSource() = default;

    /// The numbers of the processors that have pages, ascending. Places in this list stand for them below.
    const std::vector<unsigned>& processors() const { return m_processors; }

    /// Begins to record a tracepoint such as "power:cpu_idle"; 1 with the reason when the kernel refuses.
    virtual int enable(const std::string& tracepoint, Refusal& refusal) = 0;
    virtual void disable(const std::string& tracepoint) = 0;

    /// The next page of a processor, which replaces what is in `page`; false when there is none for now. Must not be
    /// called again for a processor while events of its last page are in use.
    virtual bool readPage(std::size_t processor, std::vector<char>& page) = 0;

    /// Events of a processor that the kernel counted as lost, for whatever reason.
    virtual std::uint64_t lost(std::size_t processor) = 0;

protected:
    std::vector<unsigned> m_processors;
};

/// Whether the running kernel could be traced; asks without leaving traces of its own. Defined for each system.
bool canTrace(Refusal& refusal);

/// The trace of the running kernel, in an instance of its own, so that nobody else's tracing is disturbed. The instance
/// goes with the object; those that processes left behind when they died are removed first. Null with the reason.
/// Stamps are nanoseconds of the platform's performance counter.
std::unique_ptr<TraceSource> openLiveTrace(std::size_t pageSize, Refusal& refusal);

/// The pages that a recorded machine has in its files per_cpu/cpuN/trace_pipe_raw. All tracepoints are as they were
/// when it was recorded. Null with the reason when there are none.
std::unique_ptr<TraceSource> openRecordedTrace(const pwr::MachineFiles& machine, std::size_t pageSize,
                                               Refusal& refusal);

} // namespace tracefs
