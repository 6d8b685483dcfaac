#include "tests/saved/collection_fixture.h"

#include "common/metadata/handled_version.h"
#include "common/metadata/saved_version.h"
#include "common/metadata/serializer.h"
#include "common/pw_utils.h"
#include "common/saved/block_header.h"
#include "common/saved/crc32c.h"
#include "common/saved/index.h"

#include <algorithm>
#include <cstdlib>
#include <random>
#include <sstream>

namespace tests {

namespace {

using pwr::saved::BlockHeader;
using pwr::saved::BlockKind;

/// The bytes of the page's example: the lines that begin with an offset.
std::vector<char> pageBytes() {
    std::ifstream page(pwr::pw_getenv("KR_TEST_DATA") + "/../docs/formats/saved-collection.md");
    std::vector<char> bytes;
    bool isExample = false;
    for (std::string line; std::getline(page, line);) {
        isExample = isExample || line.starts_with("    0000  ");
        if (isExample && line.size() > 10) {
            std::istringstream words(line.substr(10));
            for (int byte = 0; words >> std::hex >> byte;) {
                bytes.push_back(static_cast<char>(byte));
            }
        }
    }
    return bytes;
}

void append(std::vector<char>& file, BlockHeader header, const std::vector<char>& payload) {
    header.length = static_cast<pw_u32_t>(payload.size());
    header.payloadChecksum = pwr::saved::crc32c(payload.data(), payload.size());
    const auto bytes = encode(header);
    file.insert(file.end(), bytes.begin(), bytes.end());
    file.insert(file.end(), payload.begin(), payload.end());
}

std::vector<char> fileHeader(pw_u16_t major = 1) {
    pwr::saved::FileHeader header;
    header.major = major;
    const auto bytes = encode(header);
    return {bytes.begin(), bytes.end()};
}

} // namespace

TEST_F(CollectionTest, thePagesExampleIsWhatIsReadAndWritten) {
    const std::vector<char> page = pageBytes();
    ASSERT_EQ(305U, page.size());
    std::string error;
    const auto reader = opened(page, error);
    ASSERT_TRUE(reader) << error;
    EXPECT_TRUE(reader->hasIndex());
    EXPECT_EQ(std::vector<std::string>{"hello"}, reader->notes());
    const Told now = readAll(*reader);
    EXPECT_TRUE(now.damage.isWhole());
    EXPECT_EQ(500U, now.totals.lastTick);

    pwr::saved::FileHeader header;
    for (std::size_t i = 0; i < header.identity.size(); ++i) {
        header.identity[i] = static_cast<char>(0x10 + i);
    }
    const auto front = encode(header);
    std::vector<char> written(front.begin(), front.end());
    BlockHeader notes;
    notes.kind = BlockKind::NOTES;
    notes.firstTick = 500;
    notes.tag = header.tag();
    append(written, notes, {1, 0, 0, 0, 5, 0, 0, 0, 'h', 'e', 'l', 'l', 'o'});
    EXPECT_EQ(std::vector<char>(page.begin(), page.begin() + 85), written);
    EXPECT_EQ(0xE3069283U, pwr::saved::crc32c("123456789", 9));
    EXPECT_EQ(0xE3069283U, pwr::saved::crc32c("9", 1, pwr::saved::crc32c("12345678", 8)));
}

TEST_F(CollectionTest, whatIsNoCollectionIsRefusedWithItsReason) {
    struct Case {
        std::vector<char> bytes;
        std::string error;
    };
    std::vector<char> text(100'000, 'x');
    for (const Case& c :
         {Case{{}, "memory: the file is empty"},
          {text, "memory: not a saved collection"},
          {fileHeader(2), "memory: written by a newer version (format 2.0); this program reads up to 1.x"}}) {
        EXPECT_EQ(c.error, told(c.bytes).error);
    }
    std::string error;
    EXPECT_FALSE(CollectionReader::open(m_path, error));
    EXPECT_TRUE(error.starts_with(m_path + ": ")) << error;
    EXPECT_FALSE(CollectionReader::open(testing::TempDir(), error));
    begun();
    EXPECT_FALSE(CollectionWriter::create(m_path, CollectionWriter::Existing::REFUSE, error));
}

/// Payloads that lie although their checksums are right cost their block, and no memory.
TEST_F(CollectionTest, lyingPayloadsAreDamage) {
    const std::vector<char> huge = {'\xFF', '\xFF', '\xFF', '\xFF', 1, 2, 3, 4};
    const std::vector<char> bomb = {'\0', '\0', '\0', '\1', '\x28', '\xB5', '\x2F', '\xFD'};
    for (const auto kind : {BlockKind::SYSTEM, BlockKind::DECLARATIONS, BlockKind::INSTANCES,
                            BlockKind::SAMPLES, BlockKind::CLOCKS, BlockKind::CONFIGURATION, BlockKind::NOTES,
                            BlockKind::END, BlockKind::INDEX, BlockKind::REFERENCE}) {
        for (const pw_u16_t flags : {pw_u16_t{0}, pwr::saved::block_flag::COMPRESSED}) {
            for (const auto& payload : {huge, bomb}) {
                std::vector<char> file = fileHeader();
                BlockHeader header;
                header.kind = kind;
                header.flags = flags;
                append(file, header, payload);
                header.kind = BlockKind::NOTES;
                header.flags = 0;
                header.sequence = 1;
                append(file, header, {0, 0, 0, 0});
                const Told now = told(file);
                ASSERT_EQ(1U, now.damage.stretches.size()) << nameOf(kind) << flags;
                EXPECT_EQ(nameOf(kind), now.damage.stretches[0].kind);
                EXPECT_EQ(48U, now.damage.stretches[0].length);
            }
        }
    }
    std::vector<char> file = fileHeader();
    BlockHeader unknown;
    unknown.kind = static_cast<BlockKind>(77);
    append(file, unknown, huge);
    EXPECT_TRUE(told(file).damage.stretches.empty()) << "a later program's kind";
}

TEST_F(CollectionTest, theVersionOfTheFileBeforeIsForgotten) {
    m_message.addMetaValue(pwr::CONSTANTOperationMetadata("K", {{"SOURCE", "LEVEL"}}));
    const pw_u32_t withoutValues = pwr::packSavedVersion(2024, 2, 0);
    pwr::setHandledVersion(withoutValues);
    EXPECT_EQ("", begun()->error()) << "what is written is read back";

    pwr::Serializer out(0);
    out.write(pw_u32_t{1});
    m_message.serialize(out);
    std::vector<char> file = fileHeader(); // its system record is lost
    BlockHeader header;
    header.kind = BlockKind::DECLARATIONS;
    append(file, header, out.get_buffer());
    pwr::setHandledVersion(withoutValues);
    EXPECT_EQ("no system 1 0 0 0", told(file).facts);
}

/// Empty lines pack well: 18 MB of them stand in a hundredth of that.
TEST_F(CollectionTest, manyPackedBlocksTakeNoMoreThanTheFileJustifies) {
    const auto writer = begun();
    for (int i = 0; i < 300; ++i) {
        ASSERT_EQ(0, writer->addNotes(std::vector<std::string>(15'000)));
    }
    ASSERT_EQ(0, writer->end(m_system));
    std::string error;
    const auto reader = CollectionReader::open(m_path, error);
    ASSERT_TRUE(reader) << error;
    EXPECT_FALSE(reader->notes().empty());
    EXPECT_LT(reader->notes().size() * 4, (std::size_t{4} << 20) + 16 * writer->bytes());
    EXPECT_FALSE(readAll(*reader).damage.isWhole());
}

/// Blocks within blocks, all sound, and an index that lists each of them.
TEST_F(CollectionTest, noIndexMakesAReaderReadMoreThanTheFile) {
    constexpr pw_u32_t count = 500;
    std::vector<char> blocks(count * 40 + 40'000, 'x');
    pwr::saved::Index index;
    for (pw_u32_t i = count; i-- > 0;) {
        BlockHeader header;
        header.kind = BlockKind::NOTES;
        header.sequence = i;
        const std::size_t at = std::size_t{i} * 40;
        const char* const payload = blocks.data() + at + 40;
        header.length = static_cast<pw_u32_t>(blocks.size() - at - 40);
        header.payloadChecksum = pwr::saved::crc32c(payload, header.length);
        std::ranges::copy(encode(header), blocks.begin() + static_cast<std::ptrdiff_t>(at));
        index.entries.insert(index.entries.begin(), {header.kind, 0, 0, i, 32 + at});
    }
    std::vector<char> file = fileHeader();
    file.insert(file.end(), blocks.begin(), blocks.end());
    std::vector<char> payload;
    encode(index, {file.size(), file.size() + 40 + encodedSize(index), 0}, payload);
    BlockHeader header;
    header.kind = BlockKind::INDEX;
    header.sequence = count;
    append(file, header, payload);
    std::string error;
    const auto reader = opened(file, error);
    ASSERT_TRUE(reader && reader->hasIndex()) << error;
    EXPECT_LT(reader->bytesRead(), 3 * file.size());
}

TEST_F(CollectionTest, aFileIsReadableWhileItGrowsAndAfterItsWriterDied) {
    auto writer = begun();
    std::string error;
    for (pw_u64_t second = 6; second < 9; ++second) {
        collect(*writer, second, 1);
        const auto reader = CollectionReader::open(m_path, error);
        ASSERT_TRUE(reader) << error;
        const Told now = readAll(*reader);
        EXPECT_EQ(2 * (second - 5), now.readings.size()) << "none is older than a second";
        EXPECT_TRUE(now.damage.stretches.empty());
        EXPECT_FALSE(now.damage.isClosed);
    }
    writer->append(reading(9 * c_second, 1));
    writer.reset();
    const auto reader = CollectionReader::open(m_path, error);
    ASSERT_TRUE(reader && reader->system()) << error;
    EXPECT_EQ(6U, readAll(*reader).readings.size());
    EXPECT_EQ(8'500'000U, reader->system()->stopTSC);
    EXPECT_EQ(1'003'500'000U, reader->system()->stopTimeval);
    EXPECT_EQ(18U, reader->system()->producedSamples);
}

TEST_F(CollectionTest, openingALargeFileReadsLittleOfIt) {
    const auto writer = begun();
    std::mt19937_64 random(1);
    for (pw_u64_t second = 6; second < 46; ++second) {
        CollectionData data = reading(second * c_second, 0);
        for (int i = 0; i < 2000; ++i) {
            data.add(random());
        }
        writer->append(data);
    }
    ASSERT_EQ(0, writer->end(m_system));
    EXPECT_EQ(std::filesystem::file_size(m_path), writer->bytes());
    EXPECT_GT(writer->bytes(), 500'000U);
    std::string error;
    const auto reader = CollectionReader::open(m_path, error);
    EXPECT_LT(reader->bytesRead(), 4'000U);
    EXPECT_EQ(40U, reader->totals().readings);
    EXPECT_TRUE(readAll(*reader).damage.isWhole());
    EXPECT_LT(reader->bytesRead(), writer->bytes() + 10'000U);
}

/// Each header is sound and claims all that follows, whose checksum is wrong.
TEST_F(CollectionTest, noFileIsLookedAtManyTimes) {
    std::vector<char> file = fileHeader();
    constexpr pw_u32_t count = 4000;
    for (pw_u32_t i = 0; i < count; ++i) {
        BlockHeader header;
        header.kind = BlockKind::SAMPLES;
        header.sequence = i;
        header.length = (count - i - 1) * 40 + 8;
        const auto bytes = encode(header);
        file.insert(file.end(), bytes.begin(), bytes.end());
    }
    file.insert(file.end(), 20, '\0');
    std::string error;
    const auto reader = opened(file, error);
    ASSERT_TRUE(reader) << error;
    EXPECT_FALSE(readAll(*reader).damage.isWhole());
    EXPECT_LT(reader->bytesRead(), 8 * file.size());
}

} // namespace tests
