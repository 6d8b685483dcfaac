// Splitting configuration lines, next to the limit: one scan over one buffer that keeps the offsets of the fields.
// The reader must stay below 1.3 times the limit and allocate nothing; the whole parse adds the objects and must
// read 100,000 statements within 60 ms.

#include "bench/interleaved.h"
#include "common/config/statement.h"
#include "common/config/tw_configfile_parser.h"
#include "common/config/writer_interface_configfile_parser.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <string>
#include <string_view>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

std::size_t g_allocations = 0;

constexpr int LINE_COUNT = 100000;

// About 55 bytes a line, with the comments, blanks and line ends of files that people wrote.
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

// The hardware description as shipped files have it: a capability has two attributes and two messages, a message its
// triggers, three keys of a collector and seven constants.
std::string makeHardwareText() {
    static constexpr std::array<const char*, 11> MESSAGE = {
        "MSG_READ-WHEN=BEGIN,POLL,END",
        "TEXT-FILE_PATH=/sys/class/net/{net}/statistics/rx_bytes",
        "TEXT-FILE_FIELD=cpu{cpu} 1",
        "TEXT-FILE_WIDTH=64",
        "CONSTANT_METRIC-NAME=Pages swapped in",
        "CONSTANT_METRIC-TYPE=SampledDelta",
        "CONSTANT_CONTAINER-TAG=SWAP-IN",
        "CONSTANT_QUANTITY=Pages;pages",
        "CONSTANT_SOURCE=COUNTER",
        "CONSTANT_ENTITY=SYSTEM",
        "CONSTANT_ENTITY-TITLE=System",
    };
    std::string text;
    int lines = 0;
    for (int cap = 0; lines < LINE_COUNT; ++cap) {
        const std::string prefix = "ALL_SWAP" + std::to_string(cap) + "_";
        const auto add = [&](const std::string& statement) {
            if (lines < LINE_COUNT) {
                text += prefix + statement + (++lines % 10 == 0 ? " # why\n" : "\n");
            }
        };
        add("CAPABILITY_COMMAND-LINE_VALUE=swap" + std::to_string(cap));
        add("CAPABILITY_HELP-STRING_VALUE=pages swapped in and out");
        for (const char* const message : {"IN_", "OUT_"}) {
            for (const char* const statement : MESSAGE) {
                add(std::string(message) + statement);
            }
        }
    }
    return text;
}

struct Offsets {
    std::array<std::uint32_t, 6> begin;
    std::array<std::uint32_t, 6> end;
};

bool isBlank(char character) {
    return character == ' ' || character == '\t' || character == '\r' || character == '\n';
}

std::uint32_t trimEnd(const char* bytes, std::uint32_t begin, std::uint32_t end) {
    while (end > begin && isBlank(bytes[end - 1])) {
        --end;
    }
    return end;
}

// The limit, written as one would without our classes: a loop for each field that looks for the next delimiter.
// The zero byte behind the text ends every loop, so that none has to compare positions.
template <class Take> void scanLines(const std::string& text, Take take) {
    const char* const bytes = text.c_str();
    const auto size = static_cast<std::uint32_t>(text.size());
    const auto endsLine = [](char c) { return c == '#' || c == '\n' || c == '\0'; };
    std::uint32_t at = 0;
    Offsets offsets;
    const auto scanField = [&](std::size_t field, char delimiter) {
        offsets.begin[field] = at;
        while (bytes[at] != delimiter && bytes[at] != '=' && !endsLine(bytes[at])) {
            ++at;
        }
        offsets.end[field] = at;
        return bytes[at] == delimiter && ++at != 0;
    };
    while (at < size) {
        while (isBlank(bytes[at])) {
            ++at;
        }
        if (scanField(0, '_') && scanField(1, '_') && scanField(2, '_') && scanField(3, '_') &&
            scanField(4, '=')) {
            offsets.begin[5] = at;
            while (!endsLine(bytes[at])) {
                ++at;
            }
            offsets.end[5] = trimEnd(bytes, offsets.begin[5], at);
            take(offsets);
        }
        while (at < size && bytes[at] != '\n') {
            ++at;
        }
    }
}

#if defined(__SSE2__)
// What wide registers make of the same scan: all delimiters of 16 bytes are found at once.
template <class Take> class WideScan {
public:
    WideScan(const std::string& text, Take take) : m_text(text), m_take(take) {}

    void run() {
        const __m128i delimiters[] = {_mm_set1_epi8('_'), _mm_set1_epi8('='), _mm_set1_epi8('#'),
                                      _mm_set1_epi8('\n')};
        std::size_t block = 0;
        for (; block + 16 <= m_text.size(); block += 16) {
            const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(m_text.data() + block));
            __m128i found = _mm_setzero_si128();
            for (const __m128i delimiter : delimiters) {
                found = _mm_or_si128(found, _mm_cmpeq_epi8(bytes, delimiter));
            }
            for (auto bits = static_cast<unsigned>(_mm_movemask_epi8(found)); bits != 0; bits &= bits - 1) {
                meet_i(static_cast<std::uint32_t>(block) +
                       static_cast<std::uint32_t>(std::countr_zero(bits)));
            }
        }
        for (; block < m_text.size(); ++block) {
            meet_i(static_cast<std::uint32_t>(block));
        }
    }

private:
    void meet_i(std::uint32_t at) {
        const char delimiter = m_text[at];
        if (delimiter == '\n') {
            endLine_i(m_comment == 0 ? at : m_comment);
            m_begin = at + 1;
        } else if (m_comment != 0) {
            return;
        } else if (delimiter == '#') {
            m_comment = at;
        } else if (m_field < 5 && delimiter == (m_field < 4 ? '_' : '=')) {
            m_offsets.begin[m_field] = m_begin;
            m_offsets.end[m_field++] = at;
            m_begin = at + 1;
        }
    }
    void endLine_i(std::uint32_t end) {
        if (m_field == 5) {
            m_offsets.begin[5] = m_begin;
            m_offsets.end[5] = trimEnd(m_text.data(), m_begin, end);
            while (isBlank(m_text[m_offsets.begin[0]])) {
                ++m_offsets.begin[0];
            }
            m_take(m_offsets);
        }
        m_field = 0;
        m_comment = 0;
    }

    const std::string& m_text;
    Take m_take;
    Offsets m_offsets;
    std::size_t m_field = 0;
    std::uint32_t m_begin = 0;
    std::uint32_t m_comment = 0;
};
#endif

// Length of all values and of what stands before them: each way of splitting must find the same.
class Found {
public:
    void add(std::size_t statementLength) {
        m_length += statementLength;
        ++m_statements;
    }
    ~Found() {
        if (m_statements != LINE_COUNT || (s_expected != 0 && m_length != s_expected)) {
            std::fprintf(stderr, "%zu statements of %zu bytes\n", m_statements, m_length);
            std::exit(1);
        }
        s_expected = m_length;
    }

private:
    static inline std::size_t s_expected = 0;
    std::size_t m_statements = 0;
    std::size_t m_length = 0;
};

void splitAll(const std::string& text, Found& found) {
    pwr::StatementReader reader(text);
    pwr::Statement statement;
    while (reader.next(statement) == pwr::StatementReader::Result::STATEMENT) {
        const std::string_view value = statement.fields[pwr::Statement::VALUE];
        found.add(static_cast<std::size_t>(value.data() + value.size() - statement.fields[0].data()));
    }
}

void parseAll(const std::string& text) {
    if (pwr::WriterInterfaceConfigFileParser::instance()->parseText("bench.cfg", text) != 0) {
        std::fprintf(stderr, "the text was refused\n");
        std::exit(1);
    }
}

void parseHardware(const std::string& text) {
    if (pwr::TWConfigFileParser::instance()->parseText("bench.cfg", text) != 0) {
        std::fprintf(stderr, "the hardware description was refused\n");
        std::exit(1);
    }
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

int main() {
    const std::string text = makeText();
    const auto take = [](Found& found) {
        return [&found](const Offsets& offsets) { found.add(offsets.end[5] - offsets.begin[0]); };
    };
    bench::Interleaved comparison(std::to_string(LINE_COUNT) + " statements, " +
                                  std::to_string(text.size() / LINE_COUNT) + " bytes each, cost of one");
    comparison.add("limit, one scan", LINE_COUNT, [&] {
        Found found;
        return bench::timed([&] { scanLines(text, take(found)); });
    });
#if defined(__SSE2__)
    comparison.add("limit, one scan 16 bytes at a time", LINE_COUNT, [&] {
        Found found;
        return bench::timed([&] { WideScan(text, take(found)).run(); });
    });
#endif
    comparison.add("StatementReader", LINE_COUNT, [&] {
        Found found;
        return bench::timed([&] { splitAll(text, found); });
    });
    comparison.add("output configuration with its objects", LINE_COUNT, [&] {
        const bench::Nanoseconds taken = bench::timed([&] { parseAll(text); });
        pwr::WriterInterfaceConfigFileParser::destroy();
        return taken;
    });
    const std::string hardware = makeHardwareText();
    comparison.add("hardware description with its objects", LINE_COUNT, [&] {
        pwr::TWConfigFileParser::instance()->registerCollectorType("TEXT-FILE", nullptr);
        const bench::Nanoseconds taken = bench::timed([&] { parseHardware(hardware); });
        pwr::TWConfigFileParser::destroy();
        return taken;
    });
    comparison.report();

    const std::size_t allocationsBefore = g_allocations;
    {
        Found found;
        splitAll(text, found);
    }
    std::printf("  StatementReader: %zu allocations\n", g_allocations - allocationsBefore);
    return 0;
}
