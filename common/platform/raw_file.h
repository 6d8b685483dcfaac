#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace pwr::platform {

/// Reading of files that change under the reader: no buffer of its own, every read asks the system. Results are 0 or
/// the system's error number (errno).
class RawFile {
public:
    RawFile() = default;
    RawFile(const RawFile&) = delete;
    RawFile& operator=(const RawFile&) = delete;
    ~RawFile();

    int open(const std::string& path);
    /// Only plain files; others are refused with EINVAL, a folder with EISDIR.
    int openPlain(const std::string& path);
    void close();
    bool isOpen() const { return m_descriptor >= 0; }

    /// Reads all bytes into `out`, whose capacity is reused; `out` is empty on failure.
    int readAll(std::string& out);

    /// Whether the name has gone, or is another file's by now: what is open would be read for ever. False for what the
    /// system makes itself, which fails instead, and where the system keeps an open file's name.
    bool isLeftBehind() const;

    /// As it is at this moment.
    int size(std::uint64_t& bytes) const;

    /// Reads bytes from an offset on. Fewer are no error: `got` says how many there were.
    int readAt(std::uint64_t offset, std::span<char> bytes, std::size_t& got);

private:
    int m_descriptor = -1;
    bool m_isMadeBySystem = false;
};

/// Writes a text over what a file holds, in one step, as files that set something in the system need it. Makes no file.
int overwriteFile(const std::string& path, std::string_view text);

/// The names in a folder, unsorted, without "." and "..".
int listFolder(const std::string& path, std::vector<std::string>& names);

/// The text of a symbolic link.
int readLinkText(const std::string& path, std::string& target);

} // namespace pwr::platform
