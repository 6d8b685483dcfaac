#include "common/platform/append_file.h"

#include "common/platform/win32/wide_text.h"

#include <fcntl.h>
#include <io.h>
#include <share.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>

namespace pwr::platform {

AppendFile::~AppendFile() {
    close();
}

int AppendFile::create(const std::string& path, bool mustBeNew) {
    close();
    const int flags =
        _O_WRONLY | _O_CREAT | _O_APPEND | _O_BINARY | _O_NOINHERIT | (mustBeNew ? _O_EXCL : _O_TRUNC);
    const int result =
        ::_wsopen_s(&m_descriptor, wideText(path).c_str(), flags, _SH_DENYWR, _S_IREAD | _S_IWRITE);
    if (result != 0) {
        m_descriptor = -1;
    }
    return result;
}

int AppendFile::write(const char* bytes, std::size_t size) {
    constexpr std::size_t atOnce = std::size_t{1} << 30;
    while (size > 0) {
        const int done = ::_write(m_descriptor, bytes, static_cast<unsigned>(std::min(size, atOnce)));
        if (done < 0) {
            return errno;
        }
        bytes += done;
        size -= static_cast<std::size_t>(done);
    }
    return 0;
}

int AppendFile::sync() {
    return ::_commit(m_descriptor) != 0 ? errno : 0;
}

int AppendFile::close() {
    if (m_descriptor < 0) {
        return 0;
    }
    const int result = ::_close(m_descriptor);
    m_descriptor = -1;
    return result != 0 ? errno : 0;
}

} // namespace pwr::platform
