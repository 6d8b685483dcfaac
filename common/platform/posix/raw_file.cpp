#include "common/platform/raw_file.h"

#include <dirent.h>
#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <limits>
#include <memory>
#include <string_view>

namespace pwr::platform {

namespace {

constexpr std::size_t FIRST_SIZE = 4096;

static_assert(sizeof(off_t) == sizeof(std::uint64_t), "files are larger than 2 GiB");

bool isMadeBySystem(int descriptor) {
    struct statfs folder {};
    return ::fstatfs(descriptor, &folder) == 0 &&
           (folder.f_type == SYSFS_MAGIC || folder.f_type == PROC_SUPER_MAGIC);
}

struct FolderCloser {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

} // namespace

RawFile::~RawFile() {
    close();
}

int RawFile::open(const std::string& path) {
    close();
    m_descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (m_descriptor < 0) {
        return errno;
    }
    m_isMadeBySystem = isMadeBySystem(m_descriptor);
    return 0;
}

int RawFile::openPlain(const std::string& path) {
    const int error = open(path);
    struct stat status {};
    if (error != 0 || ::fstat(m_descriptor, &status) != 0) {
        return error != 0 ? error : errno;
    }
    if (S_ISDIR(status.st_mode)) {
        return EISDIR;
    }
    return S_ISREG(status.st_mode) ? 0 : EINVAL;
}

void RawFile::close() {
    if (m_descriptor >= 0) {
        ::close(m_descriptor);
        m_descriptor = -1;
    }
}

int RawFile::readAll(std::string& out) {
    if (m_descriptor < 0) {
        out.clear();
        return EBADF;
    }
    // Such files report no size, so the whole capacity of the last read is offered first.
    out.resize(out.capacity() < FIRST_SIZE ? FIRST_SIZE : out.capacity());
    std::size_t used = 0;
    for (;;) {
        if (used == out.size()) {
            out.resize(out.size() * 2);
        }
        const ssize_t got =
            ::pread(m_descriptor, out.data() + used, out.size() - used, static_cast<off_t>(used));
        if (got < 0 && errno == EINTR) {
            continue;
        }
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
    struct stat status {};
    return !m_isMadeBySystem && ::fstat(m_descriptor, &status) == 0 && status.st_nlink == 0;
}

int RawFile::size(std::uint64_t& bytes) const {
    struct stat status {};
    if (::fstat(m_descriptor, &status) != 0) {
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
    if (offset > static_cast<std::uint64_t>(std::numeric_limits<off_t>::max()) - bytes.size()) {
        return 0; // no file has bytes there
    }
    while (got < bytes.size()) {
        const ssize_t size =
            ::pread(m_descriptor, bytes.data() + got, bytes.size() - got, static_cast<off_t>(offset + got));
        if (size < 0 && errno == EINTR) {
            continue;
        }
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
    const int descriptor = ::open(path.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) {
        return errno;
    }
    ssize_t done = -1;
    do {
        done = ::write(descriptor, text.data(), text.size());
    } while (done < 0 && errno == EINTR);
    const int error = done < 0 ? errno : 0;
    ::close(descriptor);
    return error == 0 && static_cast<std::size_t>(done) != text.size() ? EIO : error;
}

int listFolder(const std::string& path, std::vector<std::string>& names) {
    names.clear();
    const std::unique_ptr<DIR, FolderCloser> folder(::opendir(path.c_str()));
    if (!folder) {
        return errno;
    }
    for (;;) {
        errno = 0;
        const dirent* entry = ::readdir(folder.get());
        if (entry == nullptr) {
            return errno;
        }
        const std::string_view name(static_cast<const char*>(entry->d_name));
        if (name != "." && name != "..") {
            names.emplace_back(name);
        }
    }
}

int readLinkText(const std::string& path, std::string& target) {
    std::array<char, 4096> text{};
    const ssize_t size = ::readlink(path.c_str(), text.data(), text.size());
    if (size < 0) {
        target.clear();
        return errno;
    }
    target.assign(text.data(), static_cast<std::size_t>(size));
    return 0;
}

} // namespace pwr::platform
