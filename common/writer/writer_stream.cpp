#include "common/writer/writer_stream.h"

#include "common/plugin/logger.h"
#include "common/plugin/plugin_environment.h"
#include "common/writer/table_message.h"
#include "common/writer/writer_message.h"
#include "common/writer/writer_plugin.h"

#include <typeinfo>

namespace {

/// The message as the class that its kind promises, null when it is of another class. The exact class is the rule,
/// and comparing it is much cheaper than the cast that also knows derived classes.
template <class Message> Message* as(pwr::WriterMessage& message) {
    if (typeid(message) == typeid(Message)) {
        return static_cast<Message*>(&message);
    }
    return dynamic_cast<Message*>(&message);
}

} // namespace

WriterStream::WriterStream(const std::set<WriterPlugin*>* plugins) : m_plugins(plugins) {}

WriterStream::~WriterStream() = default;

template <class Message> void WriterStream::deliver_i(Message* message) const {
    if (message == nullptr) {
        return; // it claims a kind that it is not: no plug-in could read it
    }
    for (WriterPlugin* plugin : *m_plugins) {
        plugin->writeMessage(*message);
    }
}

int WriterStream::pushMessage(pwr::WriterMessage& message) {
    using pwr::MessageType;
    if (m_plugins == nullptr) {
        pwr::logWarning("WARNING: No plugins setup for stream\n");
        return -1;
    }
    switch (message.getMessageType()) {
    case MessageType::TABLE: return pushTable_i(as<pwr::TableMessage>(message));
    case MessageType::ID: deliver_i<const pwr::IdMessage>(as<pwr::IdMessage>(message)); break;
    case MessageType::TEXT:
    case MessageType::HEADER_TEXT: // a header text comes through the text overload; writers ask for its kind
        deliver_i<const pwr::TextMessage>(as<pwr::TextMessage>(message));
        break;
    case MessageType::SYSTEM: deliver_i<const pwr::SystemMessage>(as<pwr::SystemMessage>(message)); break;
    case MessageType::METRIC_CONTAINER_INFO:
        deliver_i<const pwr::MetricContainerInfoMessage>(as<pwr::MetricContainerInfoMessage>(message));
        break;
    }
    return 0;
}

int WriterStream::pushTable_i(pwr::TableMessage* table) {
    if (table == nullptr) {
        return 1;
    }
    deliver_i<const pwr::TableMessage>(table);
    // Its own warning tells of a table that was never created; the delivery itself has succeeded.
    table->resetData();
    return 0;
}

int WriterStream::pushMessage(const pwr::Metric* metric) {
    if (metric == nullptr) {
        pwr::logWarning("WARNING: Error pushing null Metric object to Writer stream.\n");
        return 1;
    }
    if (m_plugins == nullptr) {
        pwr::logWarning("WARNING: No plugins setup for writer stream.\n");
        return 1;
    }
    int result = 0;
    for (WriterPlugin* plugin : *m_plugins) {
        if (plugin->writeMessage(*metric) != 0) {
            pwr::logWarning("WARNING: Unable to push Metric object to writer plugin\n");
            result = 1;
        }
    }
    return result;
}

int WriterStream::pushTextMessage(const std::string& text) {
    // The message takes the environment's stream, so that any stream object reaches the collection's.
    pwr::TextMessage message;
    return message.setMessage(text);
}

bool WriterStream::isSupportedTableClass(pwr::TableClass tableClass) const {
    return m_tableClasses.count(tableClass) != 0;
}

int WriterStream::flush() {
    if (m_plugins == nullptr) {
        return 0;
    }
    int result = 0;
    for (WriterPlugin* plugin : *m_plugins) {
        if (plugin->flushResults() != 0) {
            result = 1;
        }
    }
    return result;
}
