#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace pwr::platform {

/// Reading of small system files that change under the reader: no buffer of its own, every
/// read starts at the file's begin. Results are 0 or the system's error number (errno).
class RawFile {
public:
    RawFile() = default;
    RawFile(const RawFile&) = delete;
    RawFile& operator=(const RawFile&) = delete;
    ~RawFile();

    int open(const std::string& path);
    void close();
    bool isOpen() const { return m_descriptor >= 0; }

    /// Reads all bytes into `out`, whose capacity is reused; `out` is empty on failure.
    int readAll(std::string& out);

    /// Reads bytes from an offset on. Fewer are no error: `got` says how many there were.
    int readAt(std::uint64_t offset, std::span<char> bytes, std::size_t& got);

private:
    int m_descriptor = -1;
};

/// The names in a folder, unsorted, without "." and "..".
int listFolder(const std::string& path, std::vector<std::string>& names);

/// The text of a symbolic link.
int readLinkText(const std::string& path, std::string& target);

} // namespace pwr::platform
