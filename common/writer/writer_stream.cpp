#include "common/writer/writer_stream.h"

#include "common/plugin/logger.h"
#include "common/plugin/plugin_environment.h"
#include "common/writer/table_message.h"
#include "common/writer/writer_census.h"
#include "common/writer/writer_message.h"
#include "common/writer/writer_plugin.h"

#include <typeinfo>

WriterStream::WriterStream(const std::set<WriterPlugin*>* plugins) : m_plugins(plugins) {}

WriterStream::~WriterStream() = default;

/// Makes the array anew where that is possible. Not while a plug-in is being called: it may push, and the array is
/// in use then.
bool WriterStream::renewArray_i() {
    if (m_calls != 0 || m_plugins->size() != pwr::g_writerCensus.living) {
        return false; // a writer outside the set could change places with one inside
    }
    m_array.assign(m_plugins->begin(), m_plugins->end());
    m_arrayChanges = pwr::g_writerCensus.changes;
    return true;
}

/// Calls an operation for each plug-in, in the set's order. Walking the set costs more than calling its plug-ins.
template <class Operation> inline void WriterStream::forEach_i(Operation operation) {
    const bool isCurrent =
        m_arrayChanges == pwr::g_writerCensus.changes && m_array.size() == m_plugins->size();
    const bool hasArray = isCurrent || renewArray_i();
    const CallCount count(m_calls);
    if (hasArray) {
        WriterPlugin* const* const end = m_array.data() + m_array.size();
        for (WriterPlugin* const* at = m_array.data(); at != end; ++at) {
            operation(**at);
        }
        return;
    }
    for (WriterPlugin* plugin : *m_plugins) {
        operation(*plugin);
    }
}

template <class Message> inline void WriterStream::deliver_i(const Message* message) {
    if (message != nullptr) { // null: it claims a kind that it is not, and no plug-in could read it
        forEach_i([message](WriterPlugin& plugin) { plugin.writeMessage(*message); });
    }
}

int WriterStream::pushMessage(pwr::WriterMessage& message) {
    if (m_plugins == nullptr) {
        pwr::logWarning("WARNING: No plugins setup for stream\n");
        return -1;
    }
    // The frequent kinds by their exact class, which is cheaper than to ask the message and check the answer.
    const std::type_info* type = &typeid(message);
    if (type == &typeid(pwr::IdMessage)) {
        deliver_i(static_cast<const pwr::IdMessage*>(&message));
        return 0;
    }
    if (type == &typeid(pwr::TableMessage)) {
        return pushTable_i(static_cast<pwr::TableMessage*>(&message));
    }
    return pushByKind_i(message);
}

int WriterStream::pushByKind_i(pwr::WriterMessage& message) {
    using pwr::MessageType;
    switch (message.getMessageType()) {
    case MessageType::TABLE: return pushTable_i(dynamic_cast<pwr::TableMessage*>(&message));
    case MessageType::ID: deliver_i(dynamic_cast<const pwr::IdMessage*>(&message)); break;
    case MessageType::TEXT:
    case MessageType::HEADER_TEXT: // a header text comes through the text overload; writers ask for its kind
        deliver_i(dynamic_cast<const pwr::TextMessage*>(&message));
        break;
    case MessageType::SYSTEM: deliver_i(dynamic_cast<const pwr::SystemMessage*>(&message)); break;
    case MessageType::METRIC_CONTAINER_INFO:
        deliver_i(dynamic_cast<const pwr::MetricContainerInfoMessage*>(&message));
        break;
    }
    return 0;
}

int WriterStream::pushTable_i(pwr::TableMessage* table) {
    if (table == nullptr) {
        return 1;
    }
    deliver_i<pwr::TableMessage>(table);
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
    forEach_i([metric, &result](WriterPlugin& plugin) {
        if (plugin.writeMessage(*metric) != 0) {
            pwr::logWarning("WARNING: Unable to push Metric object to writer plugin\n");
            result = 1;
        }
    });
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
