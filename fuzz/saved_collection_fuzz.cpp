#include "common/metadata/system_metadata.h"
#include "common/saved/collection_reader.h"

#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>

// Each record that is read leaves handles for the process, and after such runs the fuzzer would look for leaks each
// time. Leaks are the tests' to find.
extern "C" const char* __asan_default_options() {
    return "detect_leaks=0";
}

// Any bytes are a collection that can be read to its end, or are refused with a reason. The checksums are not compared
// in these builds, so that what lies behind them is reached.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    using pwr::saved::CollectionReader;
    const std::span<const char> file(reinterpret_cast<const char*>(bytes), size);
    std::string error;
    const auto reader = CollectionReader::open(pwr::saved::ByteSource::ofMemory(file), "input", error);
    if (!reader) {
        if (!error.starts_with("input: ")) {
            std::abort();
        }
        return 0;
    }
    CollectionData reading;
    pwr::saved::SavedInstances added;
    std::uint64_t readings = 0;
    std::uint64_t values = 0;
    for (auto event = reader->next(reading, added); event != CollectionReader::Event::END;
         event = reader->next(reading, added)) {
        if (event == CollectionReader::Event::READING) {
            ++readings;
            values += reading.size();
        }
    }
    if (readings != reader->totals().readings || values != reader->totals().values) {
        std::abort();
    }
    // Linear: opening, one pass more, and what is looked for again within damaged payloads.
    if (reader->bytesRead() > 16 * size + (std::uint64_t{1} << 20)) {
        std::abort();
    }
    return 0;
}
