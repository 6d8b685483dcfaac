#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace pwr::platform {

/// A file that is only ever appended to, while others may read it. Results are 0 or the system's error number (errno).
class AppendFile {
public:
    AppendFile() = default;
    AppendFile(const AppendFile&) = delete;
    AppendFile& operator=(const AppendFile&) = delete;
    ~AppendFile();

    /// Makes the file, empty. One that is there is emptied, or with `mustBeNew` left alone (EEXIST).
    int create(const std::string& path, bool mustBeNew);
    /// Hands all bytes to the system: they outlive this process, not a failing machine.
    int write(const char* bytes, std::size_t size);
    /// Waits until what was written outlives a failing machine too.
    int sync();
    int close();
    bool isOpen() const { return m_descriptor >= 0; }

private:
    int m_descriptor = -1;
};

} // namespace pwr::platform
