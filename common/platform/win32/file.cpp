#include "common/platform/file.h"
#include "common/platform/win32/wide_text.h"

#include <cerrno>
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

namespace pwr::platform {

namespace {

/// The system's reasons as far as callers tell them apart.
int errnoOf(DWORD error) {
    switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME: return ENOENT;
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION: return EACCES;
    case ERROR_ALREADY_EXISTS:
    case ERROR_FILE_EXISTS: return EEXIST;
    case ERROR_DIRECTORY: return ENOTDIR;
    default: return EIO;
    }
}

bool succeeded(BOOL result) {
    if (result == 0) {
        errno = errnoOf(GetLastError());
    }
    return result != 0;
}

DWORD attributesOf(const std::string& path) {
    return GetFileAttributesW(wideText(path).c_str());
}

} // namespace

std::filesystem::path nativePath(const std::string& path) {
    return wideText(path);
}

bool pathExists(const std::string& path) {
    return attributesOf(path) != INVALID_FILE_ATTRIBUTES;
}

bool isFolder(const std::string& path) {
    const DWORD attributes = attributesOf(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool makeFolder(const std::string& path) {
    return succeeded(CreateDirectoryW(wideText(path).c_str(), nullptr));
}

std::string temporaryFolder() {
    std::wstring folder(MAX_PATH + 1, L'\0');
    folder.resize(GetTempPathW(static_cast<DWORD>(folder.size()), folder.data()));
    while (folder.size() > 3 && folder.back() == L'\\') { // but "C:\" keeps its separator
        folder.pop_back();
    }
    return narrowText(folder);
}

bool renameReplacing(const std::string& from, const std::string& to) {
    constexpr DWORD flags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
    return succeeded(MoveFileExW(wideText(from).c_str(), wideText(to).c_str(), flags));
}

int openDescriptor(const char* path, int flags, int mode) {
    constexpr int writable = 0222;
    const int access = (mode & writable) != 0 ? _S_IREAD | _S_IWRITE : _S_IREAD;
    return _wopen(wideText(path).c_str(), flags | _O_BINARY | _O_NOINHERIT, access);
}

int duplicateDescriptor(int from, int to) {
    return _dup2(from, to) == 0 ? to : -1;
}

std::FILE* openFile(const char* path, const char* mode) {
    return _wfopen(wideText(path).c_str(), wideText(mode).c_str());
}

std::FILE* reopenFile(const char* path, const char* mode, std::FILE* stream) {
    return _wfreopen(wideText(path).c_str(), wideText(mode).c_str(), stream);
}

bool environmentVariable(const std::string& name, std::string& value) {
    const std::wstring wideName = wideText(name);
    std::wstring found;
    // The variable may grow between the two calls, hence the loop.
    for (;;) {
        SetLastError(ERROR_SUCCESS);
        const DWORD length =
            GetEnvironmentVariableW(wideName.c_str(), found.data(), static_cast<DWORD>(found.size()));
        if (length == 0 && GetLastError() == ERROR_ENVVAR_NOT_FOUND) {
            return false;
        }
        if (length < found.size() || length == 0) {
            found.resize(length);
            value = narrowText(found);
            return true;
        }
        found.resize(length);
    }
}

char pathSeparator() {
    return '\\';
}

} // namespace pwr::platform
