#include "tarnwell/computation.h"

#include "common/metadata/msg_metadata.h"
#include "common/metadata/serializer.h"
#include "common/metadata/system_metadata.h"
#include "common/plugin/metric_plugin.h"
#include "common/writer/writer_message.h"
#include "common/writer/writer_stream.h"
#include "common/writer/writer_stream_host.h"
#include "tarnwell/host_environment.h"
#include "tarnwell/number_words.h"
#include "tarnwell/settings.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace tarnwell {
namespace {

constexpr double kMillisecondsPerSecond = 1000.0;

double ticksPerMillisecond(const pwr::SystemMetadata& system) {
    return static_cast<double>(system.twaClockFreq) * 1e3;
}

/// A record of its own with the same content. The records cannot be copied, but written and read.
std::unique_ptr<pwr::SystemMetadata> twin(const pwr::SystemMetadata& system) {
    constexpr std::size_t firstSize = std::size_t{1} << 16;
    pwr::Serializer out(firstSize);
    system.serialize(out);
    pwr::Serializer in(out.get_buffer());
    std::unique_ptr<pwr::Metadata> record(pwr::Metadata::deserialize(in, 0));
    auto* const copy = dynamic_cast<pwr::SystemMetadata*>(record.get());
    if (copy == nullptr) {
        throw std::runtime_error("the description of the system cannot be read back");
    }
    static_cast<void>(record.release());
    return std::unique_ptr<pwr::SystemMetadata>(copy);
}

} // namespace

Computation::Computation(HostEnvironment& environment, const std::vector<MetricPlugin*>& metrics,
                         const Settings& settings)
    : m_environment(environment), m_metrics(metrics), m_settings(settings) {}

Computation::~Computation() = default;

void Computation::announce(const std::vector<const pwr::Metadata*>& declarations,
                           const std::vector<AnnouncedMessage>& messages, const pwr::SystemMetadata& system) {
    if (!m_settings.reports) {
        return;
    }
    m_system = &system;
    if (m_settings.slice) {
        m_sliced = twin(system);
    }
    for (const AnnouncedMessage& message : messages) {
        noteSingle_i(message);
    }
    for (MetricPlugin* metric : m_metrics) {
        for (const pwr::Metadata* declaration : declarations) {
            metric->processMetadata(*declaration);
        }
        for (const AnnouncedMessage& message : messages) {
            metric->processInstances(*message.message, *message.instances);
        }
        metric->initializeCollection(m_sliced != nullptr ? *m_sliced : system);
    }
}

void Computation::announceMore(const AnnouncedMessage& addition) {
    if (!m_settings.reports) {
        return;
    }
    noteSingle_i(addition);
    for (MetricPlugin* metric : m_metrics) {
        metric->processInstances(*addition.message, *addition.instances);
    }
}

void Computation::noteSingle_i(const AnnouncedMessage& message) {
    const auto& triggers = message.message->getTriggers();
    const bool isSingle =
        triggers.size() == 1 && triggers.count("POLL") == 0 && message.message->getTracepointNames().empty();
    m_isSingle.set(message.message->getMsgID(), isSingle);
}

void Computation::process(const CollectionData& reading) {
    if (!m_settings.reports) {
        return;
    }
    if (m_sliced != nullptr && isOutside_i(reading)) {
        return;
    }
    pass_i(reading);
}

void Computation::pass_i(const CollectionData& reading) {
    for (MetricPlugin* metric : m_metrics) {
        metric->processMessage(reading);
    }
}

/// Not before the first reading, because a live collection knows its begin no earlier.
void Computation::beginSlice_i() {
    const double ticks = ticksPerMillisecond(*m_system);
    const ResultSlice& slice = *m_settings.slice;
    m_sliced->startTSC = m_system->startTSC + static_cast<std::uint64_t>(std::llround(slice.beginMs * ticks));
    if (slice.endMs) {
        m_sliceEnd = m_system->startTSC + static_cast<std::uint64_t>(std::llround(*slice.endMs * ticks));
    }
    m_hasBegun = true;
}

/// Also passes on what counts although it was read at another time.
bool Computation::isOutside_i(const CollectionData& reading) {
    if (!m_hasBegun) {
        beginSlice_i();
    }
    const std::uint64_t tick = reading.header().timestamp;
    if (tick >= m_sliced->startTSC && tick <= m_sliceEnd) {
        ++m_inSlice;
        return false;
    }
    if (m_isSingle.test(reading.header().id.message)) {
        CollectionData moved = reading;
        moved.header().timestamp = std::clamp(tick, m_sliced->startTSC, m_sliceEnd);
        pass_i(moved);
    }
    ++m_outside;
    return true;
}

std::string Computation::sliceNote_i() const {
    const double end = m_settings.slice->endMs.value_or(0);
    return "Only a part of the collection: from " +
           seconds(m_settings.slice->beginMs / kMillisecondsPerSecond) +
           (m_settings.slice->endMs ? " to " + seconds(end / kMillisecondsPerSecond) : std::string(" on")) +
           ", " + std::to_string(m_inSlice) + " of " + counted(m_inSlice + m_outside, "reading");
}

int Computation::report(const pwr::SystemMetadata& system, const std::vector<std::string>& notes) {
    if (!m_settings.reports) {
        return 0;
    }
    WriterStream& stream = m_environment.stream();
    pwr::SystemMessage message(&system);
    stream.pushMessage(message);
    std::uint64_t stop = system.stopTSC;
    if (m_sliced != nullptr) {
        stop = std::max(m_sliced->startTSC, std::min(stop, m_sliceEnd));
        m_sliced->stopTSC = stop;
    }
    for (MetricPlugin* metric : m_metrics) {
        metric->finalizeCollection(stop);
    }
    if (m_sliced != nullptr) {
        stream.pushTextMessage(sliceNote_i());
    }
    for (const std::string& note : notes) {
        stream.pushTextMessage(note);
    }
    return pwr::WriterStreamHost::flush(stream);
}

} // namespace tarnwell
