#pragma once

#include "common/plugin/collection_data.h"

#include <string>
#include <vector>

class MetricPlugin;

namespace pwr {
class Metadata;
class MsgMetadata;
class SystemMetadata;
} // namespace pwr

namespace tarnwell {

class HostEnvironment;

/// A message as metric plug-ins are told of it.
struct AnnouncedMessage {
    const pwr::MsgMetadata* message;
    const MessageInstances* instances;
};

/// Turns readings into the report. A live collection and a saved one go through here alike, so both print the same.
class Computation {
public:
    Computation(HostEnvironment& environment, const std::vector<MetricPlugin*>& metrics)
        : m_environment(environment), m_metrics(metrics) {}

    /// Hands the declarations and the instances to the metric plug-ins, which refer to them from then on.
    void announce(const std::vector<const pwr::Metadata*>& declarations,
                  const std::vector<AnnouncedMessage>& messages, const pwr::SystemMetadata& system);
    /// Instances that came while collecting.
    void announceMore(const AnnouncedMessage& addition);
    void process(const CollectionData& reading);

    /// Sends the system record, all tables and the notes through the stream, and has the writers write. 0; or 1
    /// when a writer could not.
    int report(const pwr::SystemMetadata& system, const std::vector<std::string>& notes);

private:
    HostEnvironment& m_environment;
    const std::vector<MetricPlugin*>& m_metrics;
};

} // namespace tarnwell
