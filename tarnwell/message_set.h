#pragma once

#include "common/metadata/msg_metadata.h"
#include "common/plugin/collection_data.h"

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <vector>

class CollectorPlugin;
class MetricPlugin;

namespace pwr {
class Metadata;
class SystemMetadata;
} // namespace pwr

namespace tarnwell {

/// The messages that one collection executes: declared by the collectors, numbered by the host, opened,
/// and announced to the metric plug-ins. Owns the declarations, which everything else refers to.
class MessageSet {
public:
    MessageSet();
    MessageSet(const MessageSet&) = delete;
    MessageSet& operator=(const MessageSet&) = delete;
    ~MessageSet();

    /// Declares and opens the messages of the chosen features. 0; or 1 and a text in problems() when
    /// there are more than the ids can number. A message that cannot be opened is a problem and left out.
    int open(const std::vector<CollectorPlugin*>& collectors, const std::set<std::string>& features);

    /// Hands the declarations and instances to the metric plug-ins, in the order of the ids.
    void announce(const std::vector<MetricPlugin*>& metrics, const pwr::SystemMetadata& system) const;

    /// Executes every message that has the trigger and hands each reading on.
    void execute(const std::string& trigger, const std::vector<MetricPlugin*>& metrics);

    /// Ends the reading: releases what the collectors hold.
    void close();

    std::uint64_t producedValues() const { return m_produced; }
    std::uint64_t missingValues() const { return m_missing; }
    std::uint64_t failedReads() const { return m_failedReads; }
    bool isEmpty() const { return m_messages.empty(); }
    const std::vector<std::string>& problems() const { return m_problems; }

private:
    struct Message {
        CollectorPlugin* collector;
        const pwr::MsgMetadata* metadata;
        MessageInstances instances;
        CollectionData data;
    };

    int adopt_i(CollectorPlugin* collector, std::vector<std::unique_ptr<pwr::Metadata>> declarations,
                const std::set<std::string>& features);
    void open_i(CollectorPlugin* collector, const pwr::MsgMetadata& metadata);
    void count_i(const CollectionData& data);
    static id_config_t idOf_i(const pwr::MsgMetadata& metadata);

    std::vector<std::unique_ptr<pwr::Metadata>> m_declarations;
    std::vector<std::unique_ptr<Message>> m_messages;
    std::vector<std::string> m_problems;
    unsigned m_collectorCount = 0;
    unsigned m_metricCount = 0;
    unsigned m_messageCount = 0;
    std::uint64_t m_produced = 0;
    std::uint64_t m_missing = 0;
    std::uint64_t m_failedReads = 0;
};

} // namespace tarnwell
