#include "common/platform/append_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace pwr::platform {

AppendFile::~AppendFile() {
    close();
}

int AppendFile::create(const std::string& path, bool mustBeNew) {
    close();
    constexpr mode_t everybodyAsTheMaskAllows = 0666;
    const int flags = O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | (mustBeNew ? O_EXCL : O_TRUNC);
    m_descriptor = ::open(path.c_str(), flags, everybodyAsTheMaskAllows);
    return m_descriptor < 0 ? errno : 0;
}

int AppendFile::write(const char* bytes, std::size_t size) {
    while (size > 0) {
        const ssize_t done = ::write(m_descriptor, bytes, size);
        if (done < 0 && errno == EINTR) {
            continue;
        }
        if (done < 0) {
            return errno;
        }
        bytes += done;
        size -= static_cast<std::size_t>(done);
    }
    return 0;
}

int AppendFile::sync() {
    // Pipes and the like have nothing to wait for.
    return ::fsync(m_descriptor) != 0 && errno != EINVAL && errno != ENOTSUP ? errno : 0;
}

int AppendFile::close() {
    if (m_descriptor < 0) {
        return 0;
    }
    const int result = ::close(m_descriptor);
    m_descriptor = -1;
    return result != 0 && errno != EINTR ? errno : 0;
}

} // namespace pwr::platform
