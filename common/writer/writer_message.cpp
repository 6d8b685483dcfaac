#include "common/writer/writer_message.h"

#include "common/plugin/logger.h"
#include "common/plugin/plugin_environment.h"
#include "common/writer/writer_stream.h"

namespace pwr {

namespace {

/// The one counter of all writer messages, kept here so that every module counts with the same one.
std::uint32_t g_nextMessageId = 1;

WriterStream* requireStream() {
    auto* stream = static_cast<WriterStream*>(g_pluginEnvironment->getWriterStream());
    if (stream == nullptr) {
        throw "ERROR: Writer stream is not initialized"; // NOLINT(misc-throw-by-value-catch-by-reference): callers
                                                         // catch the text
    }
    return stream;
}

} // namespace

WriterMessage::WriterMessage() : m_messageId(g_nextMessageId++) {}

WriterMessage::WriterMessage(const WriterMessage& other)
    : m_messageId(g_nextMessageId++), m_parentIds(other.m_parentIds),
      m_metricContainerId(other.m_metricContainerId) {}

WriterMessage::~WriterMessage() = default;

int WriterMessage::setMetricContainerId(std::uint32_t id) {
    m_metricContainerId = id;
    return 0;
}

void WriterMessage::addParentMessage(std::uint32_t id) {
    m_parentIds.insert(id);
}

bool WriterMessage::isChildOf(std::uint32_t id) const {
    return m_parentIds.count(id) != 0;
}

TextMessage::TextMessage() : m_stream(requireStream()) {}

MessageType TextMessage::getMessageType() const {
    return MessageType::TEXT;
}

int TextMessage::setMessage(const std::string& text) {
    m_text = text;
    return m_stream->pushMessage(*this);
}

HeaderTextMessage::HeaderTextMessage() = default;

MessageType HeaderTextMessage::getMessageType() const {
    return MessageType::HEADER_TEXT;
}

IdMessage::IdMessage() = default;

MessageType IdMessage::getMessageType() const {
    return MessageType::ID;
}

void IdMessage::addUniqueId(const UniqueId* uniqueId) {
    m_ids.push_back(uniqueId);
}

SystemMessage::SystemMessage(const SystemMetadata* metadata) : m_metadata(metadata) {}

MessageType SystemMessage::getMessageType() const {
    return MessageType::SYSTEM;
}

TextNotes::TextNotes() = default;

int TextNotes::addPreTableNote(const std::string& text) {
    return addNote(text, TextLocation::BEFORE_TABLE);
}

int TextNotes::addPostTableNote(const std::string& text) {
    return addNote(text, TextLocation::AFTER_TABLE);
}

bool TextNotes::getPreTableNotes(std::vector<std::string>& notes) const {
    return getNotes(notes, TextLocation::BEFORE_TABLE);
}

bool TextNotes::getPostTableNotes(std::vector<std::string>& notes) const {
    return getNotes(notes, TextLocation::AFTER_TABLE);
}

int TextNotes::addNote(const std::string& text, TextLocation location) {
    if (location > TextLocation::AFTER_TABLE) {
        // Warned of and kept all the same: a note in a place that no writer prints does no harm.
        logWarning("WARNING: Couldn't set text to be displayed\n");
    }
    m_notes[location].push_back(text);
    return 0;
}

bool TextNotes::getNotes(std::vector<std::string>& notes, TextLocation location) const {
    const auto found = m_notes.find(location);
    if (found == m_notes.end()) {
        return false;
    }
    notes = found->second;
    return true;
}

MetricContainerInfoMessage::MetricContainerInfoMessage() = default;

MessageType MetricContainerInfoMessage::getMessageType() const {
    return MessageType::METRIC_CONTAINER_INFO;
}

int MetricContainerInfoMessage::setTextInfo(const TextNotes* notes) {
    m_textInfo = notes;
    return 0;
}

int MetricContainerInfoMessage::setContainerHeader(const std::string& header) {
    const std::string line(header.size(), '=');
    m_containerHeader = line + "\n" + header + "\n" + line;
    return 0;
}

int MetricContainerInfoMessage::addStaticTableRowInfo(const TableMessage* table) {
    m_staticTableRowInfo = table;
    return 0;
}

int MetricContainerInfoMessage::setTimelineTableToDisplay(TimelineTableType type) {
    m_timelineTable = type;
    return 0;
}

int MetricContainerInfoMessage::setMetricFeatureTag(const std::string& tag) {
    m_featureTag = tag;
    return 0;
}

int MetricContainerInfoMessage::setMetricContainerTag(const std::string& tag) {
    m_containerTag = tag;
    return 0;
}

} // namespace pwr
