// Arbitrary bytes read as every kind of value: reading must stay inside and say how far it came.

#include "common/metadata/serializer.h"

#include <cstdint>
#include <cstdlib>
#include <deque>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace {

using Bytes = std::vector<char>;

void require(bool fact) {
    if (!fact) {
        std::abort();
    }
}

/// What was read must be written as the bytes that it was read from; containers with an order may
/// drop repeated keys, and a bool any value but 0 and 1.
template <class T> void readOne(pwr::Serializer& in, bool canonical) {
    T value{};
    const std::size_t taken = in.read(value);
    if (taken == 0 || !canonical) {
        return;
    }
    pwr::Serializer out(0);
    out.write(value);
    const Bytes& written = out.get_buffer();
    const std::size_t size = std::is_same_v<T, std::string> ? taken + 2 : taken;
    require(written.size() == size);
    Bytes source(size);
    in.rewind_read(size);
    require(in.read_from(source.data(), size) == size);
    require(source == written);
}

void readText(pwr::Serializer& in) {
    std::string text;
    in.read_text(text);
}

void readRaw(pwr::Serializer& in) {
    std::uint16_t size = 0;
    in.read(size);
    Bytes target(size);
    in.read_from(target.data(), target.size());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Bytes bytes(data, data + size);
    pwr::Serializer in(bytes);
    for (const char choice : bytes) {
        switch (static_cast<unsigned char>(choice) % 10) {
        case 0: readOne<bool>(in, false); break;
        case 1: readOne<std::uint64_t>(in, true); break;
        case 2: readOne<std::string>(in, true); break;
        case 3: readOne<std::vector<std::string>>(in, true); break;
        case 4: readOne<std::map<std::uint16_t, std::vector<std::string>>>(in, false); break;
        case 5: readOne<std::set<std::string>>(in, false); break;
        case 6: readOne<std::deque<std::pair<std::uint8_t, std::vector<std::uint32_t>>>>(in, true); break;
        case 7: readOne<std::vector<bool>>(in, false); break;
        case 8: readText(in); break;
        default: readRaw(in); break;
        }
    }
    return 0;
}
