// What it costs to hand a message to writer plug-ins, against the least that any fan-out with plug-ins can do:
// one virtual call for each pointer in an array.

#include "common/writer/writer_message.h"
#include "common/writer/writer_plugin.h"
#include "common/writer/writer_stream.h"
#include "common/writer/writer_stream_host.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <memory>
#include <set>
#include <vector>

namespace {

/// Takes nothing: the base's operation answers, which stands in the library's code as plug-ins stand in modules near it.
/// (One in this program's own code would be a far call, which the processor predicts less well.)
class IdleWriter : public WriterPlugin {
public:
    IdleWriter() : WriterPlugin("idle") {}
    const char* getDescription() const override { return "takes nothing"; }
    int flushResults() override { return 0; }
};

/// The limit: no message kinds, no set, no checks. As large as a plug-in, so that both meet the same caches.
class Sink {
public:
    virtual ~Sink() = default;
    virtual int take(const pwr::IdMessage& message) = 0;
    std::array<unsigned char, sizeof(WriterPlugin) - sizeof(void*)> name{};
};

template <int Kind> class IdleSink : public Sink {
public:
    int take(const pwr::IdMessage&) override { return 0; }
};

/// Two classes, of which one is chosen while running: with one alone the compiler would not call virtually.
std::unique_ptr<Sink> makeSink(bool first) {
    return first ? std::unique_ptr<Sink>(new IdleSink<1>()) : std::unique_ptr<Sink>(new IdleSink<2>());
}

void pushToAll(const std::vector<Sink*>& sinks, const pwr::IdMessage& message) {
    for (Sink* sink : sinks) {
        sink->take(message);
    }
}

void limit(benchmark::State& state) {
    std::vector<std::unique_ptr<Sink>> sinks;
    std::vector<Sink*> array;
    for (std::int64_t i = 0; i < state.range(0); ++i) {
        sinks.push_back(makeSink(state.range(0) < 1000));
        array.push_back(sinks.back().get());
    }
    const pwr::IdMessage message;
    // A fan-out is called, so its limit is too: not unrolled into the loop that measures it.
    void (*volatile push)(const std::vector<Sink*>&, const pwr::IdMessage&) = pushToAll;
    for (auto _ : state) {
        push(array, message);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void stream(benchmark::State& state) {
    std::vector<std::unique_ptr<IdleWriter>> writers(static_cast<std::size_t>(state.range(0)));
    std::set<WriterPlugin*> plugins;
    for (auto& writer : writers) {
        writer = std::make_unique<IdleWriter>();
        plugins.insert(writer.get());
    }
    WriterStream* const stream = pwr::WriterStreamHost::create(plugins);
    pwr::IdMessage message;
    for (auto _ : state) {
        stream->pushMessage(message);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    pwr::WriterStreamHost::destroy(stream);
}

} // namespace

BENCHMARK(limit)->Arg(1)->Arg(16)->Arg(64);
BENCHMARK(stream)->Arg(1)->Arg(16)->Arg(64);
BENCHMARK_MAIN();
