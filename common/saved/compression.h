#pragma once

#include "common/saved/file_format.h"

#include <memory>
#include <span>
#include <string>
#include <vector>

namespace pwr::saved {

/// Packs and unpacks the payloads of blocks: u32 plain size and a zstd frame. The tables that this needs are kept from
/// block to block.
class Compression {
public:
    Compression();
    Compression(const Compression&) = delete;
    Compression& operator=(const Compression&) = delete;
    ~Compression();

    /// False, and nothing in `packed`, when that saves less than a tenth or no reader would unpack it.
    bool pack(std::span<const char> plain, std::vector<char>& packed);

    /// Takes no more memory than 64 KiB + 64 x packed size and a payload's limit, whatever the bytes say.
    /// 0; or 1 and the reason in `error`.
    int unpack(std::span<const char> packed, std::vector<char>& plain, std::string& error);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace pwr::saved
