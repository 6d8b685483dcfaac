// Splitting configuration lines, next to the limit: one scan over one buffer that keeps the offsets of the fields.
// "split" must stay below 1.3 times "limit" and allocate nothing; "parse" adds the objects and must read 100,000
// statements within 60 ms.

#include "common/config/statement.h"
#include "common/config/writer_interface_configfile_parser.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <string>

namespace {

std::size_t g_allocations = 0;

constexpr int LINE_COUNT = 100000;

// 53 bytes a line on average, with the comments, blanks and line ends of files that people wrote.
std::string makeText() {
    static constexpr std::array<const char*, 4> KEYS = {"TITLE", "TABLE", "TRANSPOSE", "POST-TABLE-TEXT"};
    std::string text;
    for (int line = 0; line < LINE_COUNT; ++line) {
        text += "  swap" + std::to_string(line / 4) + "_RATE_MIN-MAX-AVG_" +
                KEYS[static_cast<std::size_t>(line % 4)] + "_VALUE=Some text";
        text += line % 10 == 0 ? " # why\n" : "\r\n";
    }
    return text;
}

struct Offsets {
    std::array<std::size_t, 6> begin;
    std::array<std::size_t, 6> end;
};

bool isBlank(char character) {
    return character == ' ' || character == '\t' || character == '\r' || character == '\n';
}

// Written as one would without our classes: one pass over the bytes, offsets into the buffer.
template <class Take> void scanLines(const std::string& text, Take take) {
    const char* const bytes = text.data();
    const std::size_t size = text.size();
    std::size_t position = 0;
    while (position < size) {
        while (position < size && isBlank(bytes[position])) {
            ++position;
        }
        Offsets offsets;
        std::size_t field = 0;
        std::size_t begin = position;
        while (position < size && bytes[position] != '\n' && bytes[position] != '#') {
            if (bytes[position] == (field < 4 ? '_' : '=') && field < 5) {
                offsets.begin[field] = begin;
                offsets.end[field] = position;
                ++field;
                begin = position + 1;
            }
            ++position;
        }
        std::size_t end = position;
        while (end > begin && isBlank(bytes[end - 1])) {
            --end;
        }
        while (position < size && bytes[position] != '\n') {
            ++position;
        }
        if (field == 5) {
            offsets.begin[5] = begin;
            offsets.end[5] = end;
            take(offsets);
        }
    }
}

void limit(benchmark::State& state) {
    const std::string text = makeText();
    std::size_t sum = 0;
    for (auto _ : state) {
        scanLines(text, [&sum](const Offsets& offsets) { sum += offsets.end[5] - offsets.begin[3]; });
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * LINE_COUNT);
    state.counters["bytes_a_line"] = static_cast<double>(text.size()) / LINE_COUNT;
}

void split(benchmark::State& state) {
    const std::string text = makeText();
    std::size_t sum = 0;
    const std::size_t allocationsBefore = g_allocations;
    for (auto _ : state) {
        pwr::StatementReader reader(text);
        pwr::Statement statement;
        while (reader.next(statement) == pwr::StatementReader::Result::STATEMENT) {
            sum += statement.fields[5].size() + statement.fields[4].size();
        }
        benchmark::DoNotOptimize(sum);
    }
    state.counters["allocations"] = static_cast<double>(g_allocations - allocationsBefore);
    state.SetItemsProcessed(state.iterations() * LINE_COUNT);
}

void parse(benchmark::State& state) {
    const std::string text = makeText();
    for (auto _ : state) {
        if (pwr::WriterInterfaceConfigFileParser::instance()->parseText("bench.cfg", text) != 0) {
            state.SkipWithError("the text was refused");
        }
        state.PauseTiming();
        pwr::WriterInterfaceConfigFileParser::destroy();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * LINE_COUNT);
}

} // namespace

// Not inlined: the compiler would see free() meet a pointer from new and take the pair for a mistake.
[[gnu::noinline]] void* operator new(std::size_t size) {
    ++g_allocations;
    if (void* const memory = std::malloc(size == 0 ? 1 : size)) return memory;
    throw std::bad_alloc();
}

[[gnu::noinline]] void operator delete(void* memory) noexcept {
    std::free(memory);
}

[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

BENCHMARK(limit)->Unit(benchmark::kMillisecond);
BENCHMARK(split)->Unit(benchmark::kMillisecond);
BENCHMARK(parse)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
