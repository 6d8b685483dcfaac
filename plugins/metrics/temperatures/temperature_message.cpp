#include "plugins/metrics/temperatures/temperature_message.h"

#include <cmath>
#include <limits>
#include <string>

#include "common/model/data_descriptor.h"
#include "common/model/entity_handle.h"
#include "plugins/metrics/reading_value.h"

namespace pwr {

namespace {

/// A root, so that the family of the measured thing stays as it is.
const EntityHandle* entityOf(const MessageInstances::Instance& instance) {
    return instance.descriptor == nullptr
               ? instance.entity
               : EntityHandle::create(
                     instance.entity->getQualifiedName() + " " + instance.descriptor->getName(), nullptr);
}

} // namespace

const char* TemperatureMessage::unfit(const MetricDeclaration& metric) {
    const bool isFit = metric.type == Metric::MetricType::SampledValue &&
                       metric.source == MetricDeclaration::Source::LEVEL &&
                       metric.rawType != DataType::STRING && metric.quantity == "temperature" &&
                       metric.containerTag == "ALL-THERMAL-DATA";
    return isFit ? nullptr
                 : "temperatures computes SampledValue from a LEVEL of the quantity temperature only, in the "
                   "container ALL-THERMAL-DATA";
}

TemperatureMessage::TemperatureMessage(const DeclaredMessage& message, ThermalSampleHandler& handler,
                                       const SystemMetadata& system, TemperatureNotes& notes)
    : m_message(message), m_handler(handler), m_system(system), m_notes(notes) {
    update();
}

void TemperatureMessage::update() {
    for (std::size_t i = m_channels.size(); i < m_message.instances.size(); ++i) {
        const EntityHandle* entity = entityOf(m_message.instances[i]);
        m_channels.push_back({m_handler.addEntity(entity) == 0 ? entity : nullptr});
    }
}

void TemperatureMessage::process(const CollectionData& reading) {
    const tw_driver_msg& header = reading.header();
    m_lastTick = header.timestamp;
    for (std::size_t i = 0; i < reading.size(); ++i) {
        const std::size_t index = header.first_instance + i;
        if (index < m_channels.size() && m_channels[index].entity != nullptr) {
            processChannel_i(m_channels[index], reading, i);
        }
    }
}

void TemperatureMessage::processChannel_i(Channel& channel, const CollectionData& reading, std::size_t at) {
    const std::uint64_t tick = reading.header().timestamp;
    // At the begin of the collection a temperature stands for no time yet.
    const std::uint64_t before = channel.lastTick == 0 ? m_system.startTSC : channel.lastTick;
    std::uint16_t temperature = 0;
    if (convert_i(reading, at, temperature) && tick > before) {
        m_handler.setTemperature(channel.entity, tick, temperature, false);
        channel.isSilent = false;
    } else {
        m_handler.skipTemperature(channel.entity, tick);
    }
    channel.lastTick = tick;
    channel.isDone = true;
}

bool TemperatureMessage::convert_i(const CollectionData& reading, std::size_t at,
                                   std::uint16_t& temperature) {
    constexpr double MAX = std::numeric_limits<std::uint16_t>::max();
    const bool isNumber = reading.isPresent(at) && !reading.isText(at);
    const double degrees = isNumber ? std::floor(realValueOf(reading.getBits(at), *m_message.metric) + 0.5)
                                    : std::numeric_limits<double>::quiet_NaN();
    if (degrees >= 0.0 && degrees <= MAX) {
        temperature = static_cast<std::uint16_t>(degrees);
        return true;
    }
    ++(degrees < 0.0 ? m_notes.frost : m_notes.missing);
    return false;
}

void TemperatureMessage::finishPoll() {
    for (Channel& channel : m_channels) {
        if (!channel.isDone && channel.entity != nullptr) {
            m_handler.skipTemperature(channel.entity, m_lastTick);
        }
        channel.isDone = false;
    }
}

void TemperatureMessage::addSilent(std::string& names) const {
    for (const Channel& channel : m_channels) {
        if (channel.entity != nullptr && channel.isSilent) {
            names += (names.empty() ? "" : ", ") + channel.entity->getQualifiedName();
        }
    }
}

} // namespace pwr
