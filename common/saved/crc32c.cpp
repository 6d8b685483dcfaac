#include "common/saved/crc32c.h"

#include "common/metadata/stream_codec.h"

#include <array>

namespace pwr::saved {

namespace {

constexpr pw_u32_t c_polynomial = 0x82F63B78; // 0x1EDC6F41 with its bits reversed
constexpr std::size_t c_slices = 8;

using Tables = std::array<std::array<pw_u32_t, 256>, c_slices>;

/// Table k holds what a byte does to the checksum when k zero bytes follow it.
constexpr Tables makeTables() {
    Tables tables{};
    for (pw_u32_t byte = 0; byte < 256; ++byte) {
        pw_u32_t crc = byte;
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc >> 1) ^ ((crc & 1) != 0 ? c_polynomial : 0);
        }
        tables[0][byte] = crc;
    }
    for (std::size_t slice = 1; slice < c_slices; ++slice) {
        for (std::size_t byte = 0; byte < 256; ++byte) {
            const pw_u32_t before = tables[slice - 1][byte];
            tables[slice][byte] = (before >> 8) ^ tables[0][before & 0xFF];
        }
    }
    return tables;
}

constexpr Tables c_tables = makeTables();

} // namespace

pw_u32_t crc32c(const char* bytes, std::size_t size, pw_u32_t before) {
    pw_u32_t crc = ~before;
    for (; size >= c_slices; bytes += c_slices, size -= c_slices) {
        const pw_u64_t word = stream::loadScalar<pw_u64_t>(bytes) ^ crc;
        // Written out: not every compiler unrolls a loop here.
        crc = c_tables[7][word & 0xFF] ^ c_tables[6][(word >> 8) & 0xFF] ^ c_tables[5][(word >> 16) & 0xFF] ^
              c_tables[4][(word >> 24) & 0xFF] ^ c_tables[3][(word >> 32) & 0xFF] ^
              c_tables[2][(word >> 40) & 0xFF] ^ c_tables[1][(word >> 48) & 0xFF] ^ c_tables[0][word >> 56];
    }
    for (; size > 0; ++bytes, --size) {
        crc = (crc >> 8) ^ c_tables[0][(crc ^ static_cast<pw_u8_t>(*bytes)) & 0xFF];
    }
    return ~crc;
}

} // namespace pwr::saved
