#include "plugins/metrics/temperatures/temperature_metrics.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>
#include <tuple>

#include "common/model/field.h"
#include "common/plugin/logger.h"

namespace pwr {

TemperatureMetrics::TemperatureMetrics()
    : MetricPlugin(TemperatureMessage::PLUGIN), m_declared(TemperatureMessage::PLUGIN, false) {}

int TemperatureMetrics::processMetadata(const Metadata& declaration) {
    return m_declared.processMetadata(declaration);
}

int TemperatureMetrics::processInstances(const MsgMetadata& message, const MessageInstances& instances) {
    const DeclaredMessage* declared = m_declared.processInstances(message, instances);
    if (declared == nullptr || m_system == nullptr) {
        return 0; // another plug-in's, or too early for a container
    }
    return make_i(*declared);
}

int TemperatureMetrics::initializeCollection(const SystemMetadata& system) {
    m_system = &system;
    int result = 0;
    for (const auto& message : m_declared.messages()) {
        result |= make_i(*message);
    }
    return result;
}

int TemperatureMetrics::make_i(const DeclaredMessage& message) {
    const auto known = std::find_if(m_messages.begin(), m_messages.end(),
                                    [&message](const auto& made) { return made->id() == message.id; });
    if (known != m_messages.end()) {
        (*known)->update();
        return 0;
    }
    if (message.instances.empty()) {
        return 0; // nobody to make a table about
    }
    const char* const reason = TemperatureMessage::unfit(*message.metric);
    if (reason != nullptr) {
        logWarning("WARNING: %s: %s\n", message.metric->name.c_str(), reason);
        return 1;
    }
    if (connect_i() != 0) {
        return 1;
    }
    if (!message.metric->entityTitle.empty()) {
        m_handler->getMetric().setEntityGroupInfo(FieldDescription(message.metric->entityTitle));
    }
    m_messages.push_back(std::make_unique<TemperatureMessage>(message, *m_handler, *m_system, m_notes));
    return 0;
}

/// Registers with the handler as late as possible: a container without temperatures only makes others ask why.
int TemperatureMetrics::connect_i() {
    if (m_handler != nullptr) {
        return 0;
    }
    try {
        m_handler = ThermalSampleHandler::getInstance(*m_system, this);
    } catch (const std::runtime_error& reason) {
        logWarning("WARNING: temperatures: %s\n", reason.what());
        return 1;
    }
    return 0;
}

int TemperatureMetrics::processMessage(const CollectionData& reading) {
    const tw_driver_msg& header = reading.header();
    const auto message = std::find_if(m_messages.begin(), m_messages.end(),
                                      [&header](const auto& made) { return made->id() == header.id; });
    if (message == m_messages.end()) {
        return 0;
    }
    const bool isAfterGap = (header.flags & (tw_driver_msg_flag::RESET | tw_driver_msg_flag::GAP)) != 0;
    m_notes.gaps += isAfterGap ? 1 : 0;
    enterPoll_i({static_cast<std::size_t>(message - m_messages.begin()), header.first_instance, isAfterGap});
    (*message)->process(reading);
    return 0;
}

/// A poll ends when the order of the readings begins anew, and at a gap, behind which every message has one reading
/// with the flag.
void TemperatureMetrics::enterPoll_i(const Place& place) {
    const bool isLater =
        !m_last || std::tie(place.message, place.firstValue) > std::tie(m_last->message, m_last->firstValue);
    const bool isBehindGap = m_last && place.isAfterGap && !m_last->isAfterGap;
    if (!isLater || isBehindGap) {
        for (const auto& message : m_messages) {
            message->finishPoll();
        }
    }
    m_last = place;
}

int TemperatureMetrics::finalizeCollection(std::uint64_t) {
    if (m_handler == nullptr) {
        return 0;
    }
    addNotes_i();
    m_messages.clear(); // they refer to the handler
    m_handler = nullptr;
    return ThermalSampleHandler::release(this);
}

void TemperatureMetrics::addNotes_i() {
    struct Row {
        std::uint64_t count;
        const char* what;
        const char* result;
    };
    const std::array rows{
        Row{m_notes.missing, "Values that could not be read", "the time goes to the sensor's next one"},
        Row{m_notes.frost, "Temperatures below 0 oC", "left out; the time goes to the sensor's next one"},
        Row{m_notes.gaps, "Readings after a gap", "they stand for the time of the gap as well"},
    };
    for (const Row& row : rows) {
        if (row.count > 0) {
            m_handler->getMetric().setPostMetricTextInfo(std::string(row.what) + ": " +
                                                         std::to_string(row.count) + " (" + row.result + ")");
        }
    }
    std::string names;
    for (const auto& message : m_messages) {
        message->addSilent(names);
    }
    if (!names.empty()) {
        m_handler->getMetric().setPostMetricTextInfo("No temperature came from: " + names);
    }
}

} // namespace pwr
