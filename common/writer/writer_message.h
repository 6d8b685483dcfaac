#pragma once

#include "common/export.h"
#include "common/writer/table_class.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

class WriterStream;

namespace pwr {

class SystemMetadata;
class TableMessage;
class UniqueId;

/// The kind of a writer message. It chooses the writer plug-in operation that receives the message.
enum class MessageType : std::uint32_t {
    TABLE = 0,
    ID = 1,
    TEXT = 2,
    SYSTEM = 3,
    METRIC_CONTAINER_INFO = 4,
    HEADER_TEXT = 5
};

/// Base of everything that travels through a WriterStream.
/// Ids:      one process-wide counter from 1 on; construction and copy construction take the next id,
///           assignment copies the id. Parents and container id are copied by both.
/// Threads:  the counter has no lock; make messages on one thread at a time.
class KRCOMMON_API WriterMessage {
public:
    WriterMessage();
    WriterMessage(const WriterMessage& other);
    WriterMessage& operator=(const WriterMessage& other) = default;
    virtual ~WriterMessage();
    virtual MessageType getMessageType() const = 0;

    std::uint32_t getMessageId() const { return m_messageId; }
    /// Id of the metric container that the message belongs to; 0 until it is set.
    std::uint32_t getMetricContainerId() const { return m_metricContainerId; }
    int setMetricContainerId(std::uint32_t id);
    /// Notes that this message follows from the message with the given id; a repeated id is kept once.
    void addParentMessage(std::uint32_t id);
    bool isChildOf(std::uint32_t id) const;

private:
    std::uint32_t m_messageId;
    std::set<std::uint32_t> m_parentIds;
    std::uint32_t m_metricContainerId = 0;
};

/// A text for the report. It goes to the stream that the environment held when the message was made.
/// Failure:  construction without a stream in the environment throws the character string
///           "ERROR: Writer stream is not initialized".
class KRCOMMON_API TextMessage : public WriterMessage {
public:
    TextMessage();
    MessageType getMessageType() const override;

    /// Stores the text and pushes the message at once; the result is the stream's. A second call pushes again.
    int setMessage(const std::string& text);
    const std::string& getMessage() const { return m_text; }

private:
    std::string m_text;
    WriterStream* m_stream;
};

/// A text that stands as a header in the report; delivered to the writers like any text.
class KRCOMMON_API HeaderTextMessage : public TextMessage {
public:
    HeaderTextMessage();
    MessageType getMessageType() const override;
};

/// Announces handles and other identities, so that writers can resolve ids. Does not own them.
class KRCOMMON_API IdMessage : public WriterMessage {
public:
    using const_iterator = std::vector<const UniqueId*>::const_iterator;

    IdMessage();
    MessageType getMessageType() const override;

    /// Appends; the same identity may stand in a message more than once.
    void addUniqueId(const UniqueId* uniqueId);
    const_iterator begin() const { return m_ids.begin(); }
    const_iterator end() const { return m_ids.end(); }

private:
    std::vector<const UniqueId*> m_ids;
};

/// Hands the collection's system record to the writers. Does not own it.
class KRCOMMON_API SystemMessage : public WriterMessage {
public:
    explicit SystemMessage(const SystemMetadata* metadata);
    MessageType getMessageType() const override;
    const SystemMetadata* getSystemMetadata() const { return m_metadata; }

private:
    const SystemMetadata* m_metadata;
};

/// Notes to be printed before and after a table, each list in the order added.
class KRCOMMON_API TextNotes {
public:
    enum class TextLocation : std::uint32_t { BEFORE_TABLE = 0, AFTER_TABLE = 1 };

    TextNotes();
    int addPreTableNote(const std::string& text);
    int addPostTableNote(const std::string& text);
    /// True, and notes replaced, when there are notes of the kind; otherwise notes stay as they are.
    bool getPreTableNotes(std::vector<std::string>& notes) const;
    bool getPostTableNotes(std::vector<std::string>& notes) const;

private:
    int addNote(const std::string& text, TextLocation location);
    bool getNotes(std::vector<std::string>& notes, TextLocation location) const;

    std::map<TextLocation, std::vector<std::string>> m_notes;
};

/// Tells the writers about a metric container: its tags, its banner, its notes, the table that describes its
/// rows and the over-time table that it wants. Notes and table belong to the sender and outlive the push.
class KRCOMMON_API MetricContainerInfoMessage : public WriterMessage {
public:
    MetricContainerInfoMessage();
    MessageType getMessageType() const override;

    int setTextInfo(const TextNotes* notes);
    /// Stores a banner: the text between two lines of "=" of the same number of characters, no line end at the end.
    int setContainerHeader(const std::string& header);
    /// Keeps one table: a later call replaces it.
    int addStaticTableRowInfo(const TableMessage* table);
    int setTimelineTableToDisplay(TimelineTableType type);
    int setMetricFeatureTag(const std::string& tag);
    int setMetricContainerTag(const std::string& tag);

    const TextNotes* getTextInfo() const { return m_textInfo; }
    const std::string& getContainerHeader() const { return m_containerHeader; }
    const TableMessage* getStaticTableRowInfo() const { return m_staticTableRowInfo; }
    TimelineTableType getTimelineTableToDisplay() const { return m_timelineTable; }
    const std::string& getMetricFeatureTag() const { return m_featureTag; }
    const std::string& getMetricContainerTag() const { return m_containerTag; }

private:
    const TextNotes* m_textInfo = nullptr;
    std::string m_containerHeader;
    const TableMessage* m_staticTableRowInfo = nullptr;
    TimelineTableType m_timelineTable = TimelineTableType::NONE;
    std::string m_featureTag;
    std::string m_containerTag;
};

} // namespace pwr
