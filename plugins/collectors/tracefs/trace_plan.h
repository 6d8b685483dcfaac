#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "common/machine_files.h"
#include "common/metadata/msg_metadata.h"
#include "plugins/collectors/owner_patterns.h"
#include "plugins/collectors/tracefs/event_format.h"

namespace tracefs {

/// Names of numbers.
using NumberNames = std::map<std::uint64_t, std::string>;

/// A tracepoint of a message on this machine.
struct Tracepoint {
    std::string name;                    ///< "sched:sched_switch"
    std::string event;                   ///< "sched_switch"
    std::uint16_t id = 0;                ///< how its events name it
    std::optional<EventField> value;     ///< what the event tells; none: that it happened is all
    std::optional<EventField> processor; ///< whom it tells of; none: the processor that it happened on
};

/// Whom events belong to: a processor, or with -1 the system.
struct TraceOwner : collectors::Owner {
    int processor = -1;
};

/// How one message is traced on this machine.
struct TracePlan {
    std::vector<Tracepoint> tracepoints; ///< those that the kernel has
    std::vector<TraceOwner> owners;
    bool isText = false;                   ///< values are names of events, not numbers
    NumberNames names;                     ///< what to call the numbers in names of events
    NumberNames states;                    ///< the only numbers, when it is known which there are
    std::vector<std::uint64_t> stateOrder; ///< their order in tables
    std::optional<std::uint64_t> leaving;  ///< the number that ends a state and begins none
    std::string witness;                   ///< files that count the same
    std::string error;                     ///< a declaration that cannot be understood
    std::string reason;                    ///< why nothing of it is on this machine
};

/// Looks at formats, folders and names of the machine, and makes no handles.
TracePlan planTrace(const pwr::MachineFiles& machine, const pwr::MsgMetadata& message);

/// The key STATES for the plan's states; "" when it knows none.
std::string statesOf(const TracePlan& plan);

} // namespace tracefs
