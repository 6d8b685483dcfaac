#include "common/plugin/reading_precision.h"
#include "common/saved/sample_block_decoder.h"
#include "common/saved/sample_block_encoder.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <random>
#include <sstream>
#include <string>
#include <vector>

using namespace pwr::saved;

namespace {

using Bytes = std::vector<char>;
using Readings = std::vector<CollectionData>;

CollectionData reading(std::uint64_t tick, pw_u8_t message, const std::vector<std::uint64_t>& values,
                       pw_u32_t span = 0, pw_u16_t first = 0) {
    CollectionData made;
    made.addAll(values);
    made.header().timestamp = tick;
    made.header().id = {1, 1, message};
    made.header().read_span = span;
    made.header().first_instance = first;
    return made;
}

std::string textOf(const CollectionData& data) {
    const tw_driver_msg& h = data.header();
    std::ostringstream out;
    out << h.timestamp << ' ' << h.count << ' ' << +h.id.plugin << '.' << +h.id.metric << '.' << +h.id.message
        << ' ' << +h.flags << ' ' << h.first_instance << ' ' << h.read_span << ' ' << h.reserved << ':';
    for (std::size_t i = 0; i < data.size(); ++i) {
        out << ' ';
        if (data.isText(i)) {
            out << '"' << data.getText(i) << '"';
        } else if (data.isPresent(i)) {
            out << data.getBits(i);
        } else {
            out << '-';
        }
    }
    return out.str();
}

Bytes encoded(SampleBlockEncoder& encoder, const Readings& readings) {
    for (const CollectionData& one : readings) {
        encoder.add(one);
    }
    Bytes payload;
    encoder.finish(payload);
    return payload;
}

Bytes encoded(const Readings& readings) {
    SampleBlockEncoder encoder;
    return encoded(encoder, readings);
}

void expectDecoded(SampleBlockDecoder& decoder, const Bytes& payload, const Readings& readings) {
    std::string error;
    ASSERT_EQ(decoder.open(payload, error), 0) << error;
    ASSERT_EQ(decoder.readings(), readings.size());
    CollectionData got;
    std::uint64_t lastTick = 0;
    for (const CollectionData& one : readings) {
        ASSERT_TRUE(decoder.next(got));
        ASSERT_EQ(textOf(got), textOf(one));
        lastTick = std::max(lastTick, one.header().timestamp);
    }
    EXPECT_FALSE(decoder.next(got));
    EXPECT_EQ(decoder.lastTick(), lastTick);
}

/// What any payload may do: be refused with a reason, or give as many readings and values as it says.
bool isAccepted(SampleBlockDecoder& decoder, const Bytes& payload) {
    std::string error;
    if (decoder.open(payload, error) != 0) {
        EXPECT_NE(error, "");
        CollectionData none;
        EXPECT_FALSE(decoder.next(none));
        return false;
    }
    CollectionData got;
    std::uint64_t readings = 0;
    std::uint64_t values = 0;
    while (decoder.next(got)) {
        ++readings;
        values += got.size();
    }
    EXPECT_EQ(readings, decoder.readings());
    EXPECT_EQ(values, decoder.values());
    return true;
}

Readings quiet() {
    Readings out;
    for (std::uint64_t i = 0; i < 10; ++i) {
        out.push_back(reading(1'000'000 + i * 100'000 + i % 3, 1, {5, 1000 + i * 7, 42}, 900));
        out.push_back(
            reading(1'001'500 + i * 100'000, 2, {std::bit_cast<std::uint64_t>(0.25 * double(i % 4))}));
    }
    return out;
}

Readings mixedKinds() {
    Readings out;
    const char* const texts[] = {"on", "off", "", "on"};
    for (std::uint64_t i = 0; i < 12; ++i) {
        CollectionData one = reading(i * 10, 3, {i});
        i % 3 == 0 ? one.addMissing() : one.add(i * i);
        i % 4 == 3 ? one.addMissing() : one.addText(texts[i % 4]);
        one.addText("always");
        one.addMissing();
        out.push_back(one);
    }
    return out;
}

Readings extremes() {
    const std::uint64_t top = UINT64_MAX;
    Readings out{reading(top, 255, {0, top, 1}, UINT32_MAX, 0xFFFF),
                 reading(0, 255, {top, 0, std::uint64_t{1} << 63}, 0, 0xFFFF),
                 reading(top / 2, 255, {1, top - 1, 2}, 1, 0xFFFF), reading(5, 255, {0, top, 3}, 7, 0xFFFF)};
    out[1].header().flags = 0xFE;
    out[2].header().reserved = UINT32_MAX;
    return out;
}

Readings wide() {
    Readings out;
    std::vector<std::uint64_t> values(0xFFFF, 3);
    for (std::uint64_t i = 0; i < 3; ++i) {
        values[i * 20'000] += i;
        out.push_back(reading(i * 1000, 1, values, 64));
        out.push_back(reading(i * 1000 + 1, 1, {i, 9}, 64, 0xFFFF));
    }
    return out;
}

Readings changingShape() {
    Readings out;
    for (std::uint64_t i = 0; i < 9; ++i) {
        out.push_back(reading(90 - i, static_cast<pw_u8_t>(i * i % 4),
                              std::vector<std::uint64_t>(static_cast<std::size_t>(i % 3), i)));
    }
    return out;
}

Readings still() {
    return Readings(400, reading(7, 1, std::vector<std::uint64_t>(1000, 0)));
}

Readings randomly() {
    std::mt19937_64 random(7);
    Readings out;
    for (unsigned i = 0; i < 300; ++i) {
        CollectionData one = reading(random() >> random() % 64, static_cast<pw_u8_t>(random() % 5), {},
                                     static_cast<pw_u32_t>(random()) >> random() % 32);
        for (std::uint64_t n = random() % 6; n > 0; --n) {
            switch (random() % 8) {
            case 0: one.addMissing(); break;
            case 1: one.addText(std::string(random() % 3, 'x')); break;
            default: one.add(random() >> random() % 64);
            }
        }
        out.push_back(one);
    }
    return out;
}

struct Shape {
    const char* name;
    Readings (*make)();
};

const Shape c_shapes[] = {
    {"quiet", quiet},
    {"one empty reading", [] { return Readings{reading(77, 1, {})}; }},
    {"missing values and texts", mixedKinds},
    {"extremes, wraps, falling ticks", extremes},
    {"more instances than one reading holds", wide},
    {"shapes that change", changingShape},
    {"nothing ever changes", still},
    {"random", randomly},
};

Bytes bytesOfPage(const std::string& heading) {
    const char* const folder = std::getenv("KR_TEST_DATA");
    std::ifstream page(std::string(folder == nullptr ? "tests" : folder) +
                       "/../docs/formats/samples-block.md");
    std::string line;
    while (std::getline(page, line) && line != heading) {}
    while (std::getline(page, line) && line != "```") {}
    Bytes out;
    while (std::getline(page, line) && line != "```") {
        std::istringstream words(line);
        for (std::string word; words >> word;) {
            out.push_back(static_cast<char>(std::stoi(word, nullptr, 16)));
        }
    }
    return out;
}

} // namespace

TEST(SampleBlock, GivesBackWhatItWasGiven) {
    for (const Shape& shape : c_shapes) {
        SCOPED_TRACE(shape.name);
        const Readings readings = shape.make();
        SampleBlockEncoder encoder;
        SampleBlockDecoder decoder;
        expectDecoded(decoder, encoded(encoder, readings), readings);
        EXPECT_TRUE(encoder.isEmpty());

        // The same and something else counted from a reference, and from the next one.
        for (std::uint32_t number = 1; number <= 2; ++number) {
            Bytes reference;
            std::string error;
            encoder.makeReference(reference);
            ASSERT_EQ(decoder.addReference(reference, error), 0) << error;
            EXPECT_TRUE(decoder.hasReference(number));
            Readings later = readings;
            later.push_back(reading(99, 200, {1, 2, 3}));
            const Bytes payload = encoded(encoder, later);
            EXPECT_EQ(SampleBlockDecoder::referenceOf(payload), number);
            expectDecoded(decoder, payload, later);
        }
    }
}

TEST(SampleBlock, IsShortWhereLittleChanges) {
    SampleBlockEncoder encoder;
    const std::size_t alone = encoded(encoder, quiet()).size();
    Bytes reference;
    encoder.makeReference(reference);
    EXPECT_LT(encoded(encoder, quiet()).size() + 10, alone);
    // A block in which nothing happens is filled up: what decoders do for a byte has a limit.
    EXPECT_EQ(encoded(still()).size(), 400'400U / SampleBlockEncoder::VALUES_PER_BYTE);
}

TEST(SampleBlock, BytesAreThoseOfThePage) {
    Readings readings;
    for (std::uint64_t i = 0; i < 3; ++i) {
        readings.push_back(reading(1000 + 100 * i, 7, {500, 20 + i * i}, 8));
    }
    readings.back().header().flags = tw_driver_msg_flag::END;
    EXPECT_EQ(encoded(readings), bytesOfPage("## Example"));
}

TEST(SampleBlock, DamageIsRefusedOrHarmless) {
    for (const Readings& readings : {quiet(), mixedKinds(), extremes(), changingShape()}) {
        const Bytes payload = encoded(readings);
        SampleBlockDecoder decoder;
        for (std::size_t size = 0; size < payload.size(); ++size) {
            EXPECT_FALSE(isAccepted(decoder, Bytes(payload.begin(), payload.begin() + std::ptrdiff_t(size))));
        }
        for (std::size_t bit = 0; bit < payload.size() * 8; ++bit) {
            Bytes flipped = payload;
            flipped[bit / 8] = static_cast<char>(flipped[bit / 8] ^ (1 << bit % 8));
            isAccepted(decoder, flipped);
        }
        Bytes longer = payload;
        longer.push_back(1);
        EXPECT_FALSE(isAccepted(decoder, longer));
    }
}

TEST(SampleBlock, SmallBlocksCannotAskForMuchWork) {
    const Bytes whole = encoded(still());
    const Bytes payload(whole.begin(), whole.end() - 2);
    SampleBlockDecoder decoder;
    std::string error;
    EXPECT_EQ(decoder.open(payload, error), 1);
    EXPECT_EQ(error, "a block of samples cannot be read: it holds too many values for its size");
}

TEST(SampleBlock, AReferenceIsNeededAndChecked) {
    SampleBlockEncoder encoder;
    encoded(encoder, mixedKinds());
    Bytes reference;
    encoder.makeReference(reference);
    const Bytes payload = encoded(encoder, mixedKinds());

    SampleBlockDecoder decoder;
    std::string error;
    EXPECT_EQ(decoder.open(payload, error), 1);
    EXPECT_EQ(error,
              "a block of samples cannot be read: the reference that its values count from is missing");
    for (std::size_t size = 0; size < reference.size(); ++size) {
        EXPECT_EQ(decoder.addReference(std::span(reference).first(size), error), 1);
    }
    for (std::size_t bit = 0; bit < reference.size() * 8; ++bit) {
        Bytes flipped = reference;
        flipped[bit / 8] = static_cast<char>(flipped[bit / 8] ^ (1 << bit % 8));
        SampleBlockDecoder other;
        if (other.addReference(flipped, error) == 0) {
            isAccepted(other, payload);
        }
    }
    // An open block does not need its reference any more.
    ASSERT_EQ(decoder.addReference(reference, error), 0);
    ASSERT_EQ(decoder.open(payload, error), 0);
    for (int i = 0; i < 5; ++i) {
        Bytes newer;
        encoder.makeReference(newer);
        ASSERT_EQ(decoder.addReference(newer, error), 0) << error;
    }
    EXPECT_FALSE(decoder.hasReference(1));
    CollectionData got;
    ASSERT_TRUE(decoder.next(got));
    EXPECT_EQ(textOf(got), textOf(mixedKinds().front()));
}

TEST(ReadingPrecision, KeepsTicksInsideTheirSpan) {
    for (const pw_u32_t span : {0U, 1U, 9U, 1000U, 12'345U, 4'000'000U, UINT32_MAX}) {
        for (std::uint64_t tick = 10'000'000'000; tick < 10'000'000'100; tick += 7) {
            tw_driver_msg header{};
            header.timestamp = tick;
            header.read_span = span;
            pwr::dropMeaninglessDigits(header);
            EXPECT_LE(header.timestamp > tick ? header.timestamp - tick : tick - header.timestamp, span / 28);
            EXPECT_NEAR(header.read_span, span, span / 8.0);
        }
    }
}
