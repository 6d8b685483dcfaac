#include "tarnwell/computation.h"

#include "common/metadata/system_metadata.h"
#include "common/metrics/thermal_sample_handler.h"
#include "common/plugin/metric_plugin.h"
#include "common/writer/writer_message.h"
#include "common/writer/writer_stream.h"
#include "common/writer/writer_stream_host.h"
#include "tarnwell/host_environment.h"

namespace tarnwell {

void Computation::announce(const std::vector<const pwr::Metadata*>& declarations,
                           const std::vector<AnnouncedMessage>& messages, const pwr::SystemMetadata& system) {
    for (MetricPlugin* metric : m_metrics) {
        for (const pwr::Metadata* declaration : declarations) {
            metric->processMetadata(*declaration);
        }
        for (const AnnouncedMessage& message : messages) {
            metric->processInstances(*message.message, *message.instances);
        }
        metric->initializeCollection(system);
    }
}

void Computation::announceMore(const AnnouncedMessage& addition) {
    for (MetricPlugin* metric : m_metrics) {
        metric->processInstances(*addition.message, *addition.instances);
    }
}

void Computation::process(const CollectionData& reading) {
    for (MetricPlugin* metric : m_metrics) {
        metric->processMessage(reading);
    }
}

int Computation::report(const pwr::SystemMetadata& system, const std::vector<std::string>& notes) {
    WriterStream& stream = m_environment.stream();
    pwr::SystemMessage message(&system);
    stream.pushMessage(message);
    for (MetricPlugin* metric : m_metrics) {
        metric->finalizeCollection(system.stopTSC);
    }
    for (const std::string& note : notes) {
        stream.pushTextMessage(note);
    }
    const int written = pwr::WriterStreamHost::flush(stream);
    pwr::ThermalSampleHandler::
        freeInstance(); // its notes had to last until now, and the record does not last longer
    return written;
}

} // namespace tarnwell
