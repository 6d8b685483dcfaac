#include "plugins/collectors/tracefs/trace_reader.h"

namespace tracefs {

TraceReader::TraceReader(std::unique_ptr<TraceSource> source, const PageLayout& layout)
    : m_source(std::move(source)) {
    for (std::size_t i = 0; i < m_source->processors().size(); ++i) {
        m_streams.push_back(std::make_unique<Stream>(layout));
    }
}

/// The first event of the processor's next page that has one.
bool TraceReader::load_i(std::size_t processor) {
    Stream& stream = *m_streams[processor];
    stream.hasEvent = false;
    while (!stream.hasEvent) {
        m_damagedPages += stream.decoder.isDamaged() ? 1 : 0;
        if (!m_source->readPage(processor, stream.page)) {
            stream.decoder.clear();
            return false;
        }
        stream.decoder.load(stream.page);
        stream.lost += stream.decoder.lost();
        stream.isBehindLoss = stream.isBehindLoss || stream.decoder.lost() != 0;
        stream.hasEvent = stream.decoder.next(stream.event);
    }
    return true;
}

/// The processor with the earliest event before the tick, else their number; `next` is when another one is due.
std::size_t TraceReader::findEarliest_i(std::uint64_t until, std::uint64_t& next) const {
    std::size_t earliest = m_streams.size();
    std::uint64_t first = until;
    for (std::size_t i = 0; i < m_streams.size(); ++i) {
        if (!m_streams[i]->hasEvent) {
            continue;
        }
        const std::uint64_t time = m_streams[i]->event.timestamp;
        if (time < first) {
            next = first;
            first = time;
            earliest = i;
        } else if (time < next) {
            next = time;
        }
    }
    return earliest;
}

} // namespace tracefs
