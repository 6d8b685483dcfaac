#include "common/saved/compression.h"

#include "common/metadata/stream_codec.h"

#include <zstd.h>

#include <algorithm>

namespace pwr::saved {

namespace {

constexpr int c_level = 3;
constexpr std::size_t c_sizeField = sizeof(pw_u32_t);
/// Below this the frame's own bytes eat what is saved.
constexpr std::size_t c_worthTrying = 64;

/// What a payload of a packed size may grow to.
std::size_t plainLimit(std::size_t packed) {
    return std::min(c_maxPayload, (std::size_t{64} << 10) + 64 * packed);
}

struct ContextDeleter {
    void operator()(ZSTD_CCtx* context) const { ZSTD_freeCCtx(context); }
    void operator()(ZSTD_DCtx* context) const { ZSTD_freeDCtx(context); }
};

} // namespace

struct Compression::State {
    std::unique_ptr<ZSTD_CCtx, ContextDeleter> packing;
    std::unique_ptr<ZSTD_DCtx, ContextDeleter> unpacking;
};

Compression::Compression() : m_state(std::make_unique<State>()) {}

Compression::~Compression() = default;

bool Compression::pack(std::span<const char> plain, std::vector<char>& packed) {
    packed.clear();
    if (plain.size() < c_worthTrying || plain.size() > c_maxPayload) {
        return false;
    }
    if (!m_state->packing) {
        m_state->packing.reset(ZSTD_createCCtx());
    }
    const std::size_t worthIt = plain.size() - plain.size() / 10;
    packed.resize(worthIt);
    stream::storeScalar(packed.data(), static_cast<pw_u32_t>(plain.size()));
    // A frame that does not fit into the space would not be worth it either: that error is an answer.
    const std::size_t frame =
        m_state->packing ? ZSTD_compressCCtx(m_state->packing.get(), packed.data() + c_sizeField,
                                             packed.size() - c_sizeField, plain.data(), plain.size(), c_level)
                         : 0;
    if (frame == 0 || ZSTD_isError(frame) != 0 || plain.size() > plainLimit(c_sizeField + frame)) {
        packed.clear();
        return false;
    }
    packed.resize(c_sizeField + frame);
    return true;
}

int Compression::unpack(std::span<const char> packed, std::vector<char>& plain, std::string& error) {
    plain.clear();
    if (packed.size() < c_sizeField) {
        error = "compressed payload without a size";
        return 1;
    }
    const std::size_t size = stream::loadScalar<pw_u32_t>(packed.data());
    if (size > plainLimit(packed.size())) {
        error = "compressed payload claims to be too large";
        return 1;
    }
    if (!m_state->unpacking) {
        m_state->unpacking.reset(ZSTD_createDCtx());
    }
    plain.resize(size);
    const std::size_t done =
        m_state->unpacking ? ZSTD_decompressDCtx(m_state->unpacking.get(), plain.data(), plain.size(),
                                                 packed.data() + c_sizeField, packed.size() - c_sizeField)
                           : 0;
    if (ZSTD_isError(done) != 0 || done != size) {
        plain.clear();
        error = "compressed payload cannot be unpacked";
        return 1;
    }
    return 0;
}

} // namespace pwr::saved
