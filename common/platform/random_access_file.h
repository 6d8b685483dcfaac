#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace pwr::platform {

/// Reading of any part of a file that another process may be appending to. Results are 0 or the system's error number
/// (errno).
class RandomAccessFile {
public:
    RandomAccessFile() = default;
    RandomAccessFile(const RandomAccessFile&) = delete;
    RandomAccessFile& operator=(const RandomAccessFile&) = delete;
    ~RandomAccessFile();

    /// Only plain files; others are refused with EINVAL, a folder with EISDIR.
    int open(const std::string& path);
    /// `got` is less than `size` at the end of the file only.
    int readAt(std::uint64_t offset, char* to, std::size_t size, std::size_t& got);
    /// As it is at this moment.
    int size(std::uint64_t& bytes) const;

private:
    int m_descriptor = -1;
};

} // namespace pwr::platform
