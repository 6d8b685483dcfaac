#include "common/platform/file.h"

#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pwr::platform {

std::filesystem::path nativePath(const std::string& path) {
    return path;
}

bool pathExists(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0;
}

bool isFolder(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool makeFolder(const std::string& path) {
    constexpr mode_t everybodyAsTheMaskAllows = 0777;
    return mkdir(path.c_str(), everybodyAsTheMaskAllows) == 0;
}

std::string temporaryFolder() {
    std::string folder;
    if (!environmentVariable("TMPDIR", folder) || !isFolder(folder)) {
        return "/tmp";
    }
    while (folder.size() > 1 && folder.back() == '/') {
        folder.pop_back();
    }
    return folder;
}

bool renameReplacing(const std::string& from, const std::string& to) {
    return std::rename(from.c_str(), to.c_str()) == 0;
}

int openDescriptor(const char* path, int flags, int mode) {
    return open(path, flags | O_CLOEXEC, mode);
}

int duplicateDescriptor(int from, int to) {
    return dup2(from, to);
}

std::FILE* openFile(const char* path, const char* mode) {
    return std::fopen(path, mode);
}

std::FILE* reopenFile(const char* path, const char* mode, std::FILE* stream) {
    return std::freopen(path, mode, stream);
}

bool environmentVariable(const std::string& name, std::string& value) {
    const char* const found = std::getenv(name.c_str());
    if (found == nullptr) {
        return false;
    }
    value = found;
    return true;
}

char pathSeparator() {
    return '/';
}

} // namespace pwr::platform
