// Pages of a trace turned into events, and into records for saving and computing, beside a loop without any classes.
// Goal: an event of the decoder 1.5 x the loop; a record within 500 ns, so that 200,000 events a second take a tenth of
// a processor. The pages are made here: 200,000 changes of idle states on each of two processors.

#include "bench/interleaved.h"
#include "common/driver_interface.h"
#include "plugins/collectors/tracefs/trace_session.h"
#include "tests/support/trace_pages.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace tracefs;

constexpr std::size_t c_pageSize = 4096;
constexpr std::uint64_t c_events = 200000;
constexpr std::uint16_t c_id = 568;
constexpr unsigned c_processors = 2;

std::string makePages(unsigned processor) {
    tests::TracePages pages(c_pageSize);
    for (std::uint64_t i = 0; i < c_events; ++i) {
        const std::uint64_t state = i % 2 == 0 ? 1 : 0xFFFFFFFF;
        pages.event(1000 + i * 5000 + processor * 7, tests::TracePages::eventHead(c_id) +
                                                         tests::TracePages::number(state, 4) +
                                                         tests::TracePages::number(processor, 4));
    }
    return pages.bytes();
}

void require(bool fact, const char* what) {
    if (!fact) {
        std::fprintf(stderr, "trace_pages_bench: %s\n", what);
        std::exit(1);
    }
}

/// The limit: everything at fixed places, nothing checked.
bench::Nanoseconds walk(const std::string& pages) {
    return bench::timed([&] {
        std::uint64_t sum = 0;
        std::uint64_t count = 0;
        for (std::size_t page = 0; page < pages.size(); page += c_pageSize) {
            std::uint64_t time = 0;
            std::uint32_t length = 0;
            std::memcpy(&time, pages.data() + page, 8);
            std::memcpy(&length, pages.data() + page + 8, 4);
            const char* at = pages.data() + page + 16;
            const char* const end = at + length;
            while (at < end) {
                std::uint32_t head = 0;
                std::uint32_t state = 0;
                std::uint16_t id = 0;
                std::memcpy(&head, at, 4);
                std::memcpy(&id, at + 4, 2);
                std::memcpy(&state, at + 12, 4);
                time += head >> 5U;
                sum += time + state + id;
                ++count;
                at += 4 + (head & 31U) * 4;
            }
        }
        benchmark::DoNotOptimize(sum);
        require(count == c_events, "the loop lost events");
    });
}

PageLayout layoutOfPages() {
    PageLayout layout;
    std::string error;
    require(layout.parse(tests::TracePages::layout(c_pageSize), error) == 0, error.c_str());
    return layout;
}

bench::Nanoseconds decode(const std::string& pages, const EventField& field) {
    const PageLayout layout = layoutOfPages();
    return bench::timed([&] {
        std::uint64_t sum = 0;
        std::uint64_t count = 0;
        PageDecoder decoder(layout);
        TraceEvent event;
        for (std::size_t page = 0; page < pages.size(); page += c_pageSize) {
            decoder.load(std::span<const char>(pages).subspan(page, c_pageSize));
            while (decoder.next(event)) {
                std::uint16_t id = 0;
                std::uint64_t state = 0;
                EventFormat::idOf(event, id);
                field.number(event, state);
                sum += event.timestamp + state + id;
                ++count;
            }
        }
        benchmark::DoNotOptimize(sum);
        require(count == c_events, "the decoder lost events");
    });
}

class MadePages : public TraceSource {
public:
    explicit MadePages(const std::vector<std::string>& pages) : m_pages(pages), m_next(pages.size()) {
        for (unsigned i = 0; i < pages.size(); ++i) {
            m_processors.push_back(i);
        }
    }
    int enable(const std::string& /*tracepoint*/, Refusal& /*refusal*/) override { return 0; }
    void disable(const std::string& /*tracepoint*/) override {}
    bool readPage(std::size_t processor, std::vector<char>& page) override {
        const char* const begin = m_pages[processor].data() + m_next[processor];
        const bool isThere = m_next[processor] < m_pages[processor].size();
        page.assign(begin, begin + (isThere ? c_pageSize : 0));
        m_next[processor] += page.size();
        return isThere;
    }
    std::uint64_t lost(std::size_t /*processor*/) override { return 0; }

private:
    const std::vector<std::string>& m_pages;
    std::vector<std::size_t> m_next;
};

class NoFiles : public pwr::MachineFiles {
public:
    pwr::MachineStatus read(const std::string&, std::string&) const override {
        return pwr::MachineStatus::MISSING;
    }
    pwr::MachineStatus list(const std::string&, std::vector<std::string>&) const override {
        return pwr::MachineStatus::MISSING;
    }
    pwr::MachineStatus readLink(const std::string&, std::string&) const override {
        return pwr::MachineStatus::MISSING;
    }
    bool exists(const std::string&) const override { return false; }
    std::unique_ptr<pwr::MachineFile> open(const std::string&, pwr::MachineStatus& status) const override {
        status = pwr::MachineStatus::MISSING;
        return nullptr;
    }
};

TracePlan planOf(const EventField& state, const EventField& processor, bool isText) {
    TracePlan plan;
    plan.isText = isText;
    plan.tracepoints.push_back({"power:cpu_idle", "cpu_idle", c_id, {}, {}});
    if (!isText) {
        plan.tracepoints[0].value = state;
        plan.tracepoints[0].processor = processor;
    }
    for (int i = 0; i < static_cast<int>(c_processors); ++i) {
        TraceOwner owner;
        owner.processor = i;
        plan.owners.push_back(owner);
    }
    return plan;
}

/// All that the reader does: pages of two processors in order of time, up to records, drained ten times.
bench::Nanoseconds record(const std::vector<std::string>& pages, const TracePlan& plan) {
    const PageLayout layout = layoutOfPages();
    const NoFiles machine;
    return bench::timed([&] {
        TraceSession session(std::make_unique<MadePages>(pages), layout, {});
        MessageTrace message(plan, machine, "idle-trace");
        Refusal refusal;
        session.add(message, refusal);
        std::size_t count = 0;
        constexpr std::uint64_t tenth = c_events * 500;
        for (std::uint64_t round = 1; round <= 11; ++round) {
            std::vector<CollectionData> records;
            session.advance(1000 + round * tenth);
            message.moveTo(records);
            count += records.size();
        }
        require(count == c_events * c_processors, "the session lost events");
    });
}

} // namespace

int main() {
    const std::vector<std::string> pages = {makePages(0), makePages(1)};
    const EventField state{"state", EventField::Kind::NUMBER, false, 8, 4};
    const EventField processor{"cpu_id", EventField::Kind::NUMBER, false, 12, 4};
    bench::Interleaved comparison("200,000 events a processor, cost of one");
    comparison.add("limit, walk over fixed places", c_events, [&] { return walk(pages[0]); });
    comparison.add("PageDecoder and a field by its format", c_events,
                   [&] { return decode(pages[0], state); });
    comparison.add("two processors merged, to records of numbers", c_events * c_processors,
                   [&] { return record(pages, planOf(state, processor, false)); });
    comparison.add("two processors merged, to records of texts", c_events * c_processors,
                   [&] { return record(pages, planOf(state, processor, true)); });
    comparison.report();
    return 0;
}
