#include "tarnwell/message_reader.h"

#include "common/config/input_msg.h"
#include "common/metadata/msg_metadata.h"
#include "common/platform/processor_visit.h"
#include "common/plugin/collector_plugin.h"
#include "common/plugin/logger.h"
#include "common/plugin/reading_precision.h"
#include "common/tw_clock.h"

#include <algorithm>
#include <exception>
#include <optional>

namespace tarnwell {
namespace {

/// A fault of a plug-in costs the reading, not the program, which would end where a thread lets it through.
template <class Work> bool succeeds(const OpenMessage& message, const Work& work) {
    try {
        return work() == 0;
    } catch (const std::exception& fault) {
        pwr::logError("ERROR: message %s: %s\n", message.metadata->getMsgName().c_str(), fault.what());
    } catch (...) {
        pwr::logError("ERROR: message %s: the collector failed\n", message.metadata->getMsgName().c_str());
    }
    return false;
}

} // namespace

bool OpenMessage::isRecording() const {
    return written == nullptr && !metadata->getTracepointNames().empty();
}

id_config_t OpenMessage::id() const {
    return {static_cast<pw_u8_t>(metadata->getPluginID()), static_cast<pw_u8_t>(metadata->getMetricID()),
            static_cast<pw_u8_t>(metadata->getMsgID())};
}

bool MessageReader::hasRecording() const {
    return std::any_of(m_messages.begin(), m_messages.end(),
                       [](const OpenMessage& message) { return message.isRecording(); });
}

void MessageReader::read(const std::string& trigger, const pwr::TWClockSource& clock,
                         ReadingBatch& batch) const {
    batch.begin = clock.getTimestamp();
    for (std::size_t i = 0; i < m_messages.size(); ++i) {
        const bool isDue = m_messages[i].metadata->getTriggers().count(trigger) != 0;
        if (isDue && !execute_i(m_messages[i], batch)) {
            batch.failed.push_back(i);
        }
    }
}

/// Carries a message out, on the processor that it names. What cannot go there is not carried out elsewhere: it would
/// give the counters of another processor.
bool MessageReader::execute_i(const OpenMessage& message, ReadingBatch& batch) {
    std::optional<pwr::platform::ProcessorVisit> visit;
    if (message.processor >= 0) {
        visit.emplace(static_cast<unsigned>(message.processor));
        if (!visit->isThere()) {
            return false;
        }
    }
    if (message.written != nullptr) {
        return succeeds(message, [&] { return message.written->execute({}); });
    }
    CollectionData& reading = batch.add();
    reading.header().id = message.id();
    if (!succeeds(message, [&] { return message.collector->read(*message.metadata, reading); })) {
        batch.dropLast();
        return false;
    }
    pwr::dropMeaninglessDigits(reading.header());
    return true;
}

void MessageReader::drain(std::uint64_t until, ReadingBatch& batch) const {
    for (std::size_t i = 0; i < m_messages.size(); ++i) {
        if (m_messages[i].isRecording() && !drainOne_i(m_messages[i], until, batch)) {
            batch.failed.push_back(i);
        }
    }
}

bool MessageReader::drainOne_i(const OpenMessage& message, std::uint64_t until, ReadingBatch& batch) {
    const std::size_t before = batch.size();
    std::vector<CollectionData>& records = batch.open();
    const bool isDrained =
        succeeds(message, [&] { return message.collector->drain(*message.metadata, until, records); });
    for (std::size_t i = before; i < records.size(); ++i) {
        records[i].header().id = message.id();
    }
    batch.close();
    return isDrained;
}

} // namespace tarnwell
