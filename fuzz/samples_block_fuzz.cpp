// Arbitrary bytes as a samples block, alone or behind a reference: refused, or given as many readings as told, and
// what was given comes back the same when it is encoded again.

#include "common/saved/sample_block_decoder.h"
#include "common/saved/sample_block_encoder.h"
#include "fuzz/seed_writer.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

using pwr::saved::SampleBlockDecoder;
using pwr::saved::SampleBlockEncoder;
using Bytes = std::vector<char>;

void require(bool fact) {
    if (!fact) {
        std::abort();
    }
}

bool areEqual(const CollectionData& left, const CollectionData& right) {
    bool isEqual = left.size() == right.size() &&
                   std::memcmp(&left.header(), &right.header(), sizeof(tw_driver_msg)) == 0;
    for (std::size_t i = 0; isEqual && i < left.size(); ++i) {
        isEqual = left.isPresent(i) == right.isPresent(i) && left.isText(i) == right.isText(i) &&
                  left.getBits(i) == right.getBits(i) && left.getText(i) == right.getText(i);
    }
    return isEqual;
}

/// Nothing of a refused block; so much of others that a run stays short.
std::vector<CollectionData> decoded(SampleBlockDecoder& decoder, const Bytes& payload) {
    constexpr std::uint64_t enough = 100'000;
    std::vector<CollectionData> readings;
    std::string error;
    if (decoder.open(payload, error) != 0) {
        require(!error.empty());
    } else if (decoder.values() + decoder.readings() < enough) {
        for (CollectionData reading; decoder.next(reading);) {
            readings.push_back(reading);
        }
        require(readings.size() == decoder.readings());
    }
    return readings;
}

Bytes encoded(SampleBlockEncoder& encoder, const std::vector<CollectionData>& readings) {
    std::for_each(readings.begin(), readings.end(), [&](const CollectionData& one) { encoder.add(one); });
    Bytes payload;
    encoder.finish(payload);
    return payload;
}

void requireRoundTrip(const std::vector<CollectionData>& readings) {
    SampleBlockEncoder encoder;
    SampleBlockDecoder decoder;
    std::string error;
    for (int i = 0; i < 2 && !readings.empty(); ++i) { // the second time from a reference
        const std::vector<CollectionData> again = decoded(decoder, encoded(encoder, readings));
        require(std::equal(readings.begin(), readings.end(), again.begin(), again.end(), areEqual));
        Bytes reference;
        encoder.makeReference(reference);
        require(decoder.addReference(reference, error) == 0);
    }
}

/// A byte for the length of the reference, the reference, the block.
void writeSeeds(const SeedWriter& seeds) {
    SampleBlockEncoder encoder;
    std::vector<CollectionData> readings;
    Bytes before;
    for (std::uint64_t i = 0; i < 6; ++i) {
        CollectionData one;
        one.add(i * i);
        one.add(7);
        i % 2 == 0 ? one.addText("text") : one.addMissing();
        one.header().timestamp = 1000 + i * 100;
        one.header().read_span = 12;
        one.header().id = {1, 1, static_cast<pw_u8_t>(1 + i % 2)};
        readings.push_back(one);
        const Bytes block = encoded(encoder, readings);
        Bytes bytes = before;
        bytes.insert(bytes.end(), block.begin(), block.end());
        seeds.write("block" + std::to_string(i), static_cast<char>(before.size()), bytes);
        before.clear();
        encoder.makeReference(before);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const std::size_t referenceSize = std::min<std::size_t>(data[0], size - 1);
    const Bytes reference(data + 1, data + 1 + referenceSize);
    const Bytes block(data + 1 + referenceSize, data + size);
    SampleBlockDecoder decoder;
    std::string error;
    decoder.addReference(reference, error);
    SampleBlockDecoder::referenceOf(block);
    requireRoundTrip(decoded(decoder, block));
    return 0;
}

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    const char* const folder = SeedWriter::folderOf(*argc, *argv);
    if (folder != nullptr) {
        writeSeeds(SeedWriter(folder));
        std::exit(0);
    }
    return 0;
}
