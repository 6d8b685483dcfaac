#include "common/platform/raw_file.h"

#include "common/platform/file.h"
#include "common/platform/win32/wide_text.h"

#include <fcntl.h>
#include <io.h>
#include <share.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <limits>
#include <system_error>

namespace pwr::platform {

namespace {

constexpr std::size_t FIRST_SIZE = 4096;

int errorNumber(const std::error_code& error) {
    return error.default_error_condition().value();
}

} // namespace

RawFile::~RawFile() {
    close();
}

int RawFile::open(const std::string& path) {
    close();
    const int result = ::_wsopen_s(&m_descriptor, wideText(path).c_str(),
                                   _O_RDONLY | _O_BINARY | _O_NOINHERIT, _SH_DENYNO, _S_IREAD);
    if (result != 0) {
        m_descriptor = -1;
    }
    return result;
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
        const int got = ::_read(m_descriptor, out.data() + used, static_cast<unsigned>(out.size() - used));
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
        const int size = ::_read(m_descriptor, bytes.data() + got, static_cast<unsigned>(bytes.size() - got));
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
