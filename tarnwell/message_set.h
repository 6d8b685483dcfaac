#pragma once

#include "common/metadata/msg_metadata.h"
#include "common/plugin/collection_data.h"
#include "tarnwell/computation.h"

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <vector>

class CollectorPlugin;

namespace pwr {
class InputMsg;
class Metadata;
class MetricMetadata;
} // namespace pwr

namespace tarnwell {

class HardwareDescription;

/// Why a message could not be opened.
struct OpenFailure {
    std::string feature;
    std::string reason;
    std::string fix;
};

/// The messages that one collection executes: declared by the hardware description (or by collectors themselves),
/// numbered by the host, and opened. Owns the declarations, which everything else refers to.
class MessageSet {
public:
    MessageSet();
    MessageSet(const MessageSet&) = delete;
    MessageSet& operator=(const MessageSet&) = delete;
    ~MessageSet();

    /// Takes over and opens the messages of the chosen features. 0; or 1 and a text in problems() when there are more
    /// than the ids can number. A message that cannot be opened is a problem and left out. On the running machine
    /// (@p isLive) messages are carried out on the processors that they name.
    int open(const std::vector<CollectorPlugin*>& collectors, const HardwareDescription& description,
             const std::set<std::string>& features, bool isLive);

    /// All declarations, and the messages that could be opened, in the order of their numbers.
    std::vector<const pwr::Metadata*> declarations() const;
    std::vector<AnnouncedMessage> announced() const;

    /// Executes every message that has the trigger. The readings are valid until the next call, those of INIT until the
    /// end, because no other trigger goes with it. All are taken before the first is used, so that they lie as close
    /// together in time as the collectors allow.
    const std::vector<const CollectionData*>& read(const std::string& trigger);

    /// Adds to the last round what the messages with tracepoints recorded by themselves from tick @p from to before
    /// tick @p until of the default clock, and puts all of the round in order of time.
    const std::vector<const CollectionData*>& drain(std::uint64_t from, std::uint64_t until);

    /// Ends the reading: releases what the collectors hold.
    void close();

    std::uint64_t producedValues() const { return m_produced; }
    std::uint64_t missingValues() const { return m_missing; }
    std::uint64_t failedReads() const { return m_failedReads; }
    /// The messages that could not be carried out every time, one sentence each.
    std::vector<std::string> failures() const;
    bool isEmpty() const { return m_messages.empty(); }
    const std::vector<std::string>& problems() const { return m_problems; }
    /// Why a chosen feature has no message at all; null when it has one.
    const OpenFailure* failureOf(const std::string& feature) const;

private:
    struct Message {
        CollectorPlugin* collector;
        const pwr::MsgMetadata* metadata;
        const pwr::InputMsg* written; ///< to be written, not read; null for others
        int processor;                ///< that it is carried out on; -1 for any
        std::uint64_t failures = 0;
        MessageInstances instances;
        CollectionData data;
    };

    /// A message with its metric, before it is opened. Without a metric its readings are only saved.
    struct Declared {
        std::unique_ptr<pwr::MsgMetadata> message;
        std::unique_ptr<pwr::MetricMetadata> metric;
        const pwr::InputMsg* input = nullptr; ///< the description's; null for a collector's own
    };

    std::vector<Declared> ownDeclarations_i(CollectorPlugin& collector);
    int adopt_i(CollectorPlugin* collector, std::vector<Declared> declared, bool isLive);
    void open_i(CollectorPlugin* collector, const pwr::MsgMetadata& metadata, const pwr::InputMsg* input,
                bool isLive);
    bool execute_i(Message& message);
    void drainOne_i(const Message& message, std::uint64_t until);
    void noteUnserved_i(const HardwareDescription& description, const std::set<std::string>& features);
    void count_i(const CollectionData& data);
    static id_config_t idOf_i(const pwr::MsgMetadata& metadata);

    std::vector<std::unique_ptr<pwr::Metadata>> m_declarations;
    std::vector<std::unique_ptr<Message>> m_messages;
    std::vector<const CollectionData*> m_round;
    std::vector<CollectionData> m_drained;
    std::vector<OpenFailure> m_failures;
    std::vector<std::string> m_problems;
    unsigned m_collectorCount = 0;
    unsigned m_metricCount = 0;
    unsigned m_messageCount = 0;
    std::uint64_t m_produced = 0;
    std::uint64_t m_missing = 0;
    std::uint64_t m_failedReads = 0;
};

} // namespace tarnwell
