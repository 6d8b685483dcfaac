#include "common/platform/random_access_file.h"

#include "common/platform/file.h"
#include "common/platform/win32/wide_text.h"

#include <fcntl.h>
#include <io.h>
#include <share.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>

namespace pwr::platform {

RandomAccessFile::~RandomAccessFile() {
    if (m_descriptor >= 0) {
        ::_close(m_descriptor);
    }
}

int RandomAccessFile::open(const std::string& path) {
    if (isFolder(path)) {
        return EISDIR;
    }
    const int result = ::_wsopen_s(&m_descriptor, wideText(path).c_str(),
                                   _O_RDONLY | _O_BINARY | _O_NOINHERIT, _SH_DENYNO, _S_IREAD);
    if (result != 0) {
        m_descriptor = -1;
        return result;
    }
    struct _stat64 status {};
    if (::_fstat64(m_descriptor, &status) != 0) {
        return errno;
    }
    return (status.st_mode & _S_IFMT) == _S_IFREG ? 0 : EINVAL;
}

int RandomAccessFile::readAt(std::uint64_t offset, char* to, std::size_t size, std::size_t& got) {
    constexpr std::size_t atOnce = std::size_t{1} << 30;
    got = 0;
    if (::_lseeki64(m_descriptor, static_cast<long long>(offset), SEEK_SET) < 0) {
        return errno;
    }
    while (got < size) {
        const int done = ::_read(m_descriptor, to + got, static_cast<unsigned>(std::min(size - got, atOnce)));
        if (done < 0) {
            return errno;
        }
        if (done == 0) {
            break;
        }
        got += static_cast<std::size_t>(done);
    }
    return 0;
}

int RandomAccessFile::size(std::uint64_t& bytes) const {
    struct _stat64 status {};
    if (::_fstat64(m_descriptor, &status) != 0) {
        return errno;
    }
    bytes = static_cast<std::uint64_t>(status.st_size);
    return 0;
}

} // namespace pwr::platform
