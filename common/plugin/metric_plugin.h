#pragma once

#include "common/export.h"
#include "common/plugin/collection_data.h"
#include "common/plugin/plugin.h"

#include <cstdint>
#include <string>

namespace pwr {
class Metadata;
class MsgMetadata;
class SystemMetadata;
} // namespace pwr

/// Turns readings into metrics. Nothing but what is handed to it decides its results: so a saved
/// collection gives the same tables as the live one did.
/// Threads: the one thread that computes metrics.
/// Order:   processMetadata() and processInstances() in the order of the file, then
///          initializeCollection(), then readings; at the end finalizeCollection().
/// Failure: non-zero and a warning; the plug-in goes on with what it has.
class KRCOMMON_API MetricPlugin : public Plugin {
public:
    explicit MetricPlugin(const std::string& name);
    ~MetricPlugin() override;

    /// One declaration: of a message, a metric or a collector.
    virtual int processMetadata(const pwr::Metadata& declaration) = 0;
    /// Whom a message's values belong to; comes again when instances are appended while collecting.
    virtual int processInstances(const pwr::MsgMetadata& message, const MessageInstances& instances) = 0;
    /// Makes the metric containers.
    virtual int initializeCollection(const pwr::SystemMetadata& system) = 0;
    virtual int processMessage(const CollectionData& reading) = 0;
    /// Ends all containers; the tick is of the default clock.
    virtual int finalizeCollection(std::uint64_t stopTick) = 0;
};
