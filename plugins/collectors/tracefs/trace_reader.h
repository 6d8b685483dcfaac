#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "plugins/collectors/tracefs/page_decoder.h"
#include "plugins/collectors/tracefs/trace_source.h"

namespace tracefs {

/// Reads the pages of all processors and hands their events on in order of time.
class TraceReader {
public:
    TraceReader(std::unique_ptr<TraceSource> source, const PageLayout& layout);

    TraceSource& source() { return *m_source; }
    std::uint64_t damagedPages() const { return m_damagedPages; }
    /// Events of a processor that its pages told as lost.
    std::uint64_t lost(std::size_t processor) const { return m_streams[processor]->lost; }

    /// Hands on every event before the tick: `sink.take(event, processor)`, with its place in the source's list, after
    /// `sink.miss(processor)` where events before it were lost. The rest waits.
    template <class Sink> void advance(std::uint64_t until, Sink& sink) {
        for (std::size_t i = 0; i < m_streams.size(); ++i) {
            if (!m_streams[i]->hasEvent) {
                load_i(i);
            }
        }
        for (;;) {
            std::uint64_t next = until;
            const std::size_t earliest = findEarliest_i(until, next);
            if (earliest == m_streams.size()) {
                return;
            }
            // Events come in runs from one processor: as long as no other has an earlier one, it goes on.
            Stream& stream = *m_streams[earliest];
            do {
                if (std::exchange(stream.isBehindLoss, false)) {
                    sink.miss(earliest);
                }
                sink.take(stream.event, earliest);
                stream.hasEvent = stream.decoder.next(stream.event) || load_i(earliest);
            } while (stream.hasEvent && stream.event.timestamp < next);
        }
    }

private:
    struct Stream {
        explicit Stream(const PageLayout& layout) : decoder(layout) {}

        PageDecoder decoder;
        std::vector<char> page;
        TraceEvent event;
        bool hasEvent = false;
        bool isBehindLoss = false;
        std::uint64_t lost = 0;
    };

    bool load_i(std::size_t processor);
    std::size_t findEarliest_i(std::uint64_t until, std::uint64_t& next) const;

    std::unique_ptr<TraceSource> m_source;
    std::vector<std::unique_ptr<Stream>> m_streams; // by the processor's place
    std::uint64_t m_damagedPages = 0;
};

} // namespace tracefs
