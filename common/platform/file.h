#pragma once

#include "common/export.h"

#include <cstdio>
#include <filesystem>
#include <string>

// Files and folders by UTF-8 paths. What fails tells why in errno, unless it says otherwise.

namespace pwr::platform {

/// For the standard library's file streams. Bytes that are no UTF-8 are replaced where the system's paths
/// are not bytes.
KRCOMMON_API std::filesystem::path nativePath(const std::string& path);

KRCOMMON_API bool pathExists(const std::string& path);
KRCOMMON_API bool isFolder(const std::string& path);
/// Makes one folder; the one above it must be there.
KRCOMMON_API bool makeFolder(const std::string& path);
/// The folder for temporary files, without a separator at the end.
KRCOMMON_API std::string temporaryFolder();
/// Gives a file another name; a file of that name is replaced in one step, so that whoever looks sees
/// the old or the new one.
KRCOMMON_API bool renameReplacing(const std::string& from, const std::string& to);

/// As the C library's calls of these names, with binary mode where that is a question.
KRCOMMON_API int openDescriptor(const char* path, int flags, int mode);
KRCOMMON_API int duplicateDescriptor(int from, int to);
KRCOMMON_API std::FILE* openFile(const char* path, const char* mode);
KRCOMMON_API std::FILE* reopenFile(const char* path, const char* mode, std::FILE* stream);

/// False when the variable is not set.
KRCOMMON_API bool environmentVariable(const std::string& name, std::string& value);

KRCOMMON_API char pathSeparator();

} // namespace pwr::platform
