#include "common/saved/block_header.h"

#include "common/metadata/stream_codec.h"
#include "common/saved/crc32c.h"

#include <cstring>

namespace pwr::saved {

namespace {

// Offsets within a block's header. Its own checksum comes last and covers all before.
enum : std::size_t {
    KIND = 8,
    FLAGS = 10,
    LENGTH = 12,
    FIRST_TICK = 16,
    SEQUENCE = 24,
    TAG = 28,
    ORDINAL = 30,
    PAYLOAD_CHECKSUM = 32,
    HEADER_CHECKSUM = 36
};

// Offsets within the file's header.
enum : std::size_t { MAJOR = 8, MINOR = 10, IDENTITY = 12, FILE_CHECKSUM = 28 };

template <std::size_t SIZE> void seal(std::array<char, SIZE>& bytes) {
    const std::size_t covered = SIZE - sizeof(pw_u32_t);
    stream::storeScalar(bytes.data() + covered, crc32c(bytes.data(), covered));
}

template <std::size_t SIZE>
bool isSound(const std::array<char, SIZE>& bytes, const std::array<unsigned char, 8>& mark) {
    const std::size_t covered = SIZE - sizeof(pw_u32_t);
    return std::memcmp(bytes.data(), mark.data(), mark.size()) == 0 &&
           isChecksum(stream::loadScalar<pw_u32_t>(bytes.data() + covered), crc32c(bytes.data(), covered));
}

} // namespace

pw_u16_t FileHeader::tag() const {
    return stream::loadScalar<pw_u16_t>(identity.data());
}

FileHeaderBytes encode(const FileHeader& header) {
    FileHeaderBytes bytes{};
    std::memcpy(bytes.data(), c_fileMagic.data(), c_fileMagic.size());
    stream::storeScalar(bytes.data() + MAJOR, header.major);
    stream::storeScalar(bytes.data() + MINOR, header.minor);
    std::memcpy(bytes.data() + IDENTITY, header.identity.data(), header.identity.size());
    seal(bytes);
    return bytes;
}

BlockHeaderBytes encode(const BlockHeader& header) {
    BlockHeaderBytes bytes{};
    std::memcpy(bytes.data(), c_blockMark.data(), c_blockMark.size());
    stream::storeScalar(bytes.data() + KIND, static_cast<pw_u16_t>(header.kind));
    stream::storeScalar(bytes.data() + FLAGS, header.flags);
    stream::storeScalar(bytes.data() + LENGTH, header.length);
    stream::storeScalar(bytes.data() + FIRST_TICK, header.firstTick);
    stream::storeScalar(bytes.data() + SEQUENCE, header.sequence);
    stream::storeScalar(bytes.data() + TAG, header.tag);
    stream::storeScalar(bytes.data() + ORDINAL, header.ordinal);
    stream::storeScalar(bytes.data() + PAYLOAD_CHECKSUM, header.payloadChecksum);
    seal(bytes);
    return bytes;
}

bool decode(const FileHeaderBytes& bytes, FileHeader& header) {
    header.major = stream::loadScalar<pw_u16_t>(bytes.data() + MAJOR);
    header.minor = stream::loadScalar<pw_u16_t>(bytes.data() + MINOR);
    std::memcpy(header.identity.data(), bytes.data() + IDENTITY, header.identity.size());
    return isSound(bytes, c_fileMagic);
}

bool decode(const BlockHeaderBytes& bytes, BlockHeader& header) {
    // Kinds that this program does not know keep their number: they are skipped, not refused.
    header.kind = static_cast<BlockKind>(stream::loadScalar<pw_u16_t>(bytes.data() + KIND));
    header.flags = stream::loadScalar<pw_u16_t>(bytes.data() + FLAGS);
    header.length = stream::loadScalar<pw_u32_t>(bytes.data() + LENGTH);
    header.firstTick = stream::loadScalar<pw_u64_t>(bytes.data() + FIRST_TICK);
    header.sequence = stream::loadScalar<pw_u32_t>(bytes.data() + SEQUENCE);
    header.tag = stream::loadScalar<pw_u16_t>(bytes.data() + TAG);
    header.ordinal = stream::loadScalar<pw_u16_t>(bytes.data() + ORDINAL);
    header.payloadChecksum = stream::loadScalar<pw_u32_t>(bytes.data() + PAYLOAD_CHECKSUM);
    return header.length <= c_maxPayload && isSound(bytes, c_blockMark);
}

const char* nameOf(BlockKind kind) {
    static constexpr std::array<const char*, 11> names = {"unknown", "system", "declarations",  "instances",
                                                          "samples", "clocks", "configuration", "notes",
                                                          "end",     "index",  "reference"};
    const auto number = static_cast<std::size_t>(kind);
    return names[number < names.size() ? number : 0];
}

} // namespace pwr::saved
