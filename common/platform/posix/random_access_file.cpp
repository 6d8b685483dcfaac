#include "common/platform/random_access_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace pwr::platform {

static_assert(sizeof(off_t) == sizeof(std::uint64_t), "files are larger than 2 GiB");

RandomAccessFile::~RandomAccessFile() {
    if (m_descriptor >= 0) {
        ::close(m_descriptor);
    }
}

int RandomAccessFile::open(const std::string& path) {
    // A pipe without a writer must not hold the reader up.
    m_descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    struct stat status {};
    if (m_descriptor < 0 || ::fstat(m_descriptor, &status) != 0) {
        return errno;
    }
    if (S_ISDIR(status.st_mode)) {
        return EISDIR;
    }
    return S_ISREG(status.st_mode) ? 0 : EINVAL;
}

int RandomAccessFile::readAt(std::uint64_t offset, char* to, std::size_t size, std::size_t& got) {
    got = 0;
    while (got < size) {
        const ssize_t done = ::pread(m_descriptor, to + got, size - got, static_cast<off_t>(offset + got));
        if (done < 0 && errno == EINTR) {
            continue;
        }
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
    struct stat status {};
    if (::fstat(m_descriptor, &status) != 0) {
        return errno;
    }
    bytes = static_cast<std::uint64_t>(status.st_size);
    return 0;
}

} // namespace pwr::platform
