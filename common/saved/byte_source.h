#pragma once

#include "common/export.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace pwr::saved {

/// Where the bytes of a saved collection come from. The size may grow while it is read.
class KRCOMMON_API ByteSource {
public:
    virtual ~ByteSource();

    virtual std::uint64_t size() = 0;
    /// Fills `to` from an offset and answers how many bytes were there: less only at the end. What cannot be read is
    /// given as zeros, which no checksum takes for sound.
    virtual std::size_t readAt(std::uint64_t offset, std::span<char> to) = 0;

    /// Null with the reason, path included, in `error`.
    static std::unique_ptr<ByteSource> ofFile(const std::string& path, std::string& error);
    /// The bytes must stay.
    static std::unique_ptr<ByteSource> ofMemory(std::span<const char> bytes);
};

} // namespace pwr::saved
