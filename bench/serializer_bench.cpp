// A record-like message of 54 items in 402 bytes, written and read by the serializer and by a loop
// without any of its classes. Goals: warm write and read 1.2 x, fresh buffer 2 x the warm one.

#include "bench/interleaved.h"
#include "common/metadata/serializer.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr std::size_t c_messageSize = 402;
constexpr std::size_t c_messages = 48; // stay in the first-level cache
constexpr std::size_t c_rounds = 2000;

struct Message {
    std::array<std::uint32_t, 10> words{1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
    std::array<std::uint64_t, 8> ticks{1, 2, 3, 4, 5, 6, 7, 8};
    std::array<std::uint16_t, 6> shorts{1, 2, 3, 4, 5, 6};
    std::array<bool, 6> flags{true, false, true, false, true, true};
    std::array<float, 4> floats{1, 2, 3, 4};
    std::array<double, 2> doubles{1, 2};
    std::array<std::string, 18> texts{
        "package-wide", "frequency-01", "frequency-02", "frequency-03", "residency-01", "residency-02",
        "residency-03", "temperature1", "temperature2", "temperature3", "bandwidth-01", "bandwidth-02",
        "bandwidth-03", "bandwidth-04", "memory-read",  "memory-hits",  "memory-miss",  "energy-cost"};
};

// In the order of a real record: texts between the numbers.
template <class Item> void forEachItem(auto& message, const Item& item) {
    for (std::size_t i = 0; i < 2; ++i) {
        for (std::size_t k = 0; k < 5; ++k) {
            item(message.words[5 * i + k]);
            item(message.texts[9 * i + k]);
        }
        for (std::size_t k = 0; k < 4; ++k) {
            item(message.ticks[4 * i + k]);
            item(message.texts[9 * i + 5 + k]);
        }
        for (std::size_t k = 0; k < 3; ++k) {
            item(message.shorts[3 * i + k]);
            item(message.flags[3 * i + k]);
        }
        item(message.floats[2 * i]);
        item(message.floats[2 * i + 1]);
        item(message.doubles[i]);
    }
}

[[noreturn]] void fail(const char* what) {
    std::fprintf(stderr, "serializer_bench: %s\n", what);
    std::exit(1);
}

/// The limit: a buffer that grows, one check a primitive, nothing else. The cursor is a pair of
/// pointers whose address nobody has, so that it stays in registers.
struct PlainBuffer {
    explicit PlainBuffer(std::size_t size) : bytes(size) {}

    [[gnu::noinline]] static char* grow(std::vector<char>& bytes, std::size_t used, std::size_t more) {
        bytes.resize(2 * (used + more));
        return bytes.data() + used;
    }

    std::vector<char> bytes;
};

class PlainWriter {
public:
    explicit PlainWriter(PlainBuffer& buffer)
        : m_bytes(buffer.bytes), m_at(m_bytes.data()), m_end(m_at + m_bytes.size()) {}
    void put(const std::string& text) {
        room(2 + text.size());
        const auto size = static_cast<std::uint16_t>(text.size());
        std::memcpy(m_at, &size, 2);
        std::memcpy(m_at + 2, text.data(), text.size());
        m_at += 2 + text.size();
    }
    template <class T> void put(T value) {
        room(sizeof(T));
        std::memcpy(m_at, &value, sizeof(T));
        m_at += sizeof(T);
    }

private:
    void room(std::size_t size) {
        if (static_cast<std::size_t>(m_end - m_at) < size) {
            m_at = PlainBuffer::grow(m_bytes, static_cast<std::size_t>(m_at - m_bytes.data()), size);
            m_end = m_bytes.data() + m_bytes.size();
        }
    }

    std::vector<char>& m_bytes;
    char* m_at;
    char* m_end;
};

class PlainReader {
public:
    explicit PlainReader(const std::vector<char>& bytes) : m_at(bytes.data()), m_end(m_at + bytes.size()) {}
    bool get(std::string& text) {
        std::uint16_t size = 0;
        if (!get(size) || static_cast<std::size_t>(m_end - m_at) < size) {
            return false;
        }
        text.assign(m_at, size);
        m_at += size;
        return true;
    }
    template <class T> bool get(T& value) {
        if (static_cast<std::size_t>(m_end - m_at) < sizeof(T)) {
            return false;
        }
        std::memcpy(&value, m_at, sizeof(T));
        m_at += sizeof(T);
        return true;
    }

private:
    const char* m_at;
    const char* m_end;
};

bench::Nanoseconds writeLimit(const Message& message) {
    bench::Nanoseconds total{0};
    for (std::size_t round = 0; round < c_rounds / c_messages; ++round) {
        PlainBuffer buffer(c_messages * c_messageSize);
        total += bench::timed([&] {
            PlainWriter out(buffer);
            for (std::size_t i = 0; i < c_messages; ++i) {
                forEachItem(message, [&out](const auto& item) { out.put(item); });
                benchmark::ClobberMemory();
            }
        });
    }
    return total;
}

bench::Nanoseconds writeWarm(const Message& message) {
    bench::Nanoseconds total{0};
    for (std::size_t round = 0; round < c_rounds / c_messages; ++round) {
        pwr::Serializer out(c_messages * c_messageSize);
        total += bench::timed([&] {
            for (std::size_t i = 0; i < c_messages; ++i) {
                forEachItem(message, [&out](const auto& item) { out.write(item); });
                benchmark::ClobberMemory();
            }
        });
    }
    return total;
}

/// As the records write: runs of fields in one call.
template <std::size_t i> void writeFields(pwr::Serializer& out, const Message& message) {
    const auto& [words, ticks, shorts, flags, floats, doubles, texts] = message;
    constexpr std::size_t w = 5 * i;
    constexpr std::size_t t = 9 * i;
    out.write(words[w], texts[t], words[w + 1], texts[t + 1], words[w + 2], texts[t + 2], words[w + 3],
              texts[t + 3], words[w + 4], texts[t + 4]);
    out.write(ticks[4 * i], texts[t + 5], ticks[4 * i + 1], texts[t + 6], ticks[4 * i + 2], texts[t + 7],
              ticks[4 * i + 3], texts[t + 8]);
    out.write(shorts[3 * i], flags[3 * i], shorts[3 * i + 1], flags[3 * i + 1], shorts[3 * i + 2],
              flags[3 * i + 2], floats[2 * i], floats[2 * i + 1], doubles[i]);
}

bench::Nanoseconds writeWarmFields(const Message& message) {
    bench::Nanoseconds total{0};
    for (std::size_t round = 0; round < c_rounds / c_messages; ++round) {
        pwr::Serializer out(c_messages * c_messageSize);
        total += bench::timed([&] {
            for (std::size_t i = 0; i < c_messages; ++i) {
                writeFields<0>(out, message);
                writeFields<1>(out, message);
                benchmark::ClobberMemory();
            }
        });
    }
    return total;
}

bench::Nanoseconds writeFresh(const Message& message, std::size_t size) {
    return bench::timed([&] {
        for (std::size_t i = 0; i < c_rounds; ++i) {
            pwr::Serializer out(size);
            forEachItem(message, [&out](const auto& item) { out.write(item); });
            benchmark::DoNotOptimize(out);
        }
    });
}

bench::Nanoseconds readLimit(const std::vector<char>& saved, Message& message) {
    return bench::timed([&] {
        PlainReader in(saved);
        for (std::size_t i = 0; i < c_rounds; ++i) {
            if (i % c_messages == 0) {
                in = PlainReader(saved);
            }
            bool good = true;
            forEachItem(message, [&](auto& item) { good = good && in.get(item); });
            if (!good) {
                fail("the limit's reading ran short");
            }
            benchmark::ClobberMemory();
        }
    });
}

bench::Nanoseconds readOwned(pwr::Serializer& in, Message& message) {
    return bench::timed([&] {
        for (std::size_t i = 0; i < c_rounds; ++i) {
            if (i % c_messages == 0 && i != 0) {
                in.rewind_read(c_messages * c_messageSize);
            }
            bool good = true;
            forEachItem(message, [&](auto& item) { good = good && in.read(item) != 0; });
            if (!good) {
                fail("reading ran short");
            }
            benchmark::ClobberMemory();
        }
        in.rewind_read(((c_rounds - 1) % c_messages + 1) * c_messageSize);
    });
}

} // namespace

int main() {
    const Message message;
    pwr::Serializer saved(0);
    for (std::size_t i = 0; i < c_messages; ++i) {
        forEachItem(message, [&saved](const auto& item) { saved.write(item); });
    }
    if (saved.get_buffer().size() != c_messages * c_messageSize) {
        fail("a message is not of 402 bytes");
    }
    pwr::Serializer in(saved.get_buffer());
    Message target;

    bench::Interleaved writing("writing a message of 54 items, 402 bytes");
    const std::size_t warm = c_rounds / c_messages * c_messages;
    writing.add("limit, warm buffer", warm, [&] { return writeLimit(message); });
    writing.add("Serializer, warm buffer, item by item", warm, [&] { return writeWarm(message); });
    writing.add("Serializer, warm buffer, runs of fields", warm, [&] { return writeWarmFields(message); });
    writing.add("Serializer, fresh buffer of the right size", c_rounds,
                [&] { return writeFresh(message, c_messageSize); });
    writing.add("Serializer, fresh and empty", c_rounds, [&] { return writeFresh(message, 0); });
    writing.report();

    bench::Interleaved reading("reading it into reused objects");
    reading.add("limit", c_rounds, [&] { return readLimit(saved.get_buffer(), target); });
    reading.add("Serializer", c_rounds, [&] { return readOwned(in, target); });
    reading.report();
    return 0;
}
