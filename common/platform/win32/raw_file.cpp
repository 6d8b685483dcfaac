#include "common/platform/raw_file.h"

#include "common/platform/file.h"
#include "common/platform/win32/wide_text.h"

#include <fcntl.h>
#include <io.h>
#include <share.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <limits>
#include <system_error>

namespace pwr::platform {

namespace {

constexpr std::size_t FIRST_SIZE = 4096;
// A call takes no more than an int counts.
constexpr std::size_t MAX_AT_ONCE = std::size_t{1} << 30;

int openDescriptor(const std::string& path, int flags, int& descriptor) {
    const int result = ::_wsopen_s(&descriptor, wideText(path).c_str(), flags | _O_BINARY | _O_NOINHERIT,
                                   _SH_DENYNO, _S_IREAD | _S_IWRITE);
    if (result != 0) {
        descriptor = -1;
    }
    return result;
}

int errorNumber(const std::error_code& error) {
    return error.default_error_condition().value();
}

} // namespace

RawFile::~RawFile() {
    close();
}

int RawFile::open(const std::string& path) {
    close();
    return openDescriptor(path, _O_RDONLY, m_descriptor);
}

int RawFile::openPlain(const std::string& path) {
    if (isFolder(path)) {
        return EISDIR;
    }
    const int error = open(path);
    struct _stat64 status {};
    if (error != 0 || ::_fstat64(m_descriptor, &status) != 0) {
        return error != 0 ? error : errno;
    }
    return (status.st_mode & _S_IFMT) == _S_IFREG ? 0 : EINVAL;
}

void RawFile::close() {
    if (m_descriptor >= 0) {
        ::_close(m_descriptor);
        m_descriptor = -1;
    }
}

int RawFile::readAll(std::string& out) {
    if (m_descriptor < 0 || ::_lseeki64(m_descriptor, 0, SEEK_SET) < 0) {
        out.clear();
        return m_descriptor < 0 ? EBADF : errno;
    }
    out.resize(out.capacity() < FIRST_SIZE ? FIRST_SIZE : out.capacity());
    std::size_t used = 0;
    for (;;) {
        if (used == out.size()) {
            out.resize(out.size() * 2);
        }
        const int got = ::_read(m_descriptor, out.data() + used,
                                static_cast<unsigned>(std::min(out.size() - used, MAX_AT_ONCE)));
        if (got < 0) {
            const int error = errno;
            out.clear();
            return error;
        }
        if (got == 0) {
            out.resize(used);
            return 0;
        }
        used += static_cast<std::size_t>(got);
    }
}

bool RawFile::isLeftBehind() const {
    return m_descriptor < 0; // an open file keeps its name
}

int RawFile::size(std::uint64_t& bytes) const {
    struct _stat64 status {};
    if (::_fstat64(m_descriptor, &status) != 0) {
        return errno;
    }
    bytes = static_cast<std::uint64_t>(status.st_size);
    return 0;
}

int RawFile::readAt(std::uint64_t offset, std::span<char> bytes, std::size_t& got) {
    got = 0;
    if (m_descriptor < 0) {
        return EBADF;
    }
    if (offset > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()) - bytes.size()) {
        return 0; // no file has bytes there
    }
    if (::_lseeki64(m_descriptor, static_cast<std::int64_t>(offset), SEEK_SET) < 0) {
        return errno;
    }
    while (got < bytes.size()) {
        const int size = ::_read(m_descriptor, bytes.data() + got,
                                 static_cast<unsigned>(std::min(bytes.size() - got, MAX_AT_ONCE)));
        if (size < 0) {
            return errno;
        }
        if (size == 0) {
            break;
        }
        got += static_cast<std::size_t>(size);
    }
    return 0;
}

int overwriteFile(const std::string& path, std::string_view text) {
    int descriptor = -1;
    if (const int error = openDescriptor(path, _O_WRONLY | _O_TRUNC, descriptor); error != 0) {
        return error;
    }
    const int done =
        ::_write(descriptor, text.data(), static_cast<unsigned>(std::min(text.size(), MAX_AT_ONCE)));
    const int error = done < 0 ? errno : 0;
    ::_close(descriptor);
    return error == 0 && static_cast<std::size_t>(done) != text.size() ? EIO : error;
}

int listFolder(const std::string& path, std::vector<std::string>& names) {
    names.clear();
    std::error_code error;
    for (auto entry = std::filesystem::directory_iterator(nativePath(path), error);
         !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        names.push_back(narrowText(entry->path().filename().native()));
    }
    return error ? errorNumber(error) : 0;
}

int readLinkText(const std::string& path, std::string& target) {
    std::error_code error;
    target = narrowText(std::filesystem::read_symlink(nativePath(path), error).generic_wstring());
    return error ? errorNumber(error) : 0;
}

} // namespace pwr::platform
