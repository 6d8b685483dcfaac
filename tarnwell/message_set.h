#pragma once

#include "common/metadata/msg_metadata.h"
#include "common/plugin/collection_data.h"
#include "tarnwell/computation.h"
#include "tarnwell/message_reader.h"

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

    /// What reads them, on whatever thread.
    const MessageReader& reader() const { return m_reader; }
    /// Counts what was read.
    void count(const CollectionData& reading);
    /// Counts reads that failed; messages are numbered as the reader has them.
    void countFailures(const std::vector<std::size_t>& messages);

    /// Ends the reading: releases what the collectors hold.
    void close();

    std::uint64_t producedValues() const { return m_produced; }
    std::uint64_t missingValues() const { return m_missing; }
    std::uint64_t failedReads() const { return m_failedReads; }
    /// The messages that could not be carried out every time, one sentence each.
    std::vector<std::string> failures() const;
    bool isEmpty() const { return m_messages.empty(); }
    const std::vector<std::string>& problems() const { return m_problems; }
    /// What the collectors had to say when they were closed.
    const std::vector<std::string>& notes() const { return m_notes; }
    /// Why a chosen feature has no message at all; null when it has one.
    const OpenFailure* failureOf(const std::string& feature) const;

private:
    struct Message {
        const pwr::MsgMetadata* metadata;
        bool isWritten; ///< not read
        std::uint64_t failures = 0;
        MessageInstances instances;
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
    void nameStates_i(const pwr::MsgMetadata& message, const std::string& states);
    void noteUnserved_i(const HardwareDescription& description, const std::set<std::string>& features);

    std::vector<std::unique_ptr<pwr::Metadata>> m_declarations;
    std::vector<std::unique_ptr<Message>> m_messages;
    MessageReader m_reader;
    std::vector<OpenFailure> m_failures;
    std::vector<std::string> m_problems;
    std::vector<std::string> m_notes;
    unsigned m_collectorCount = 0;
    unsigned m_metricCount = 0;
    unsigned m_messageCount = 0;
    std::uint64_t m_produced = 0;
    std::uint64_t m_missing = 0;
    std::uint64_t m_failedReads = 0;
};

} // namespace tarnwell
