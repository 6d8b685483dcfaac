#pragma once

#include "common/export.h"

#include <fstream>
#include <string>
#include <string_view>

namespace pwr {

/// A result file that appears whole or not at all: it is written beside its final name (with ".part" behind it)
/// and renamed when all of it has reached the file system. An earlier file of the name stays until then.
/// A device or a pipe ("/dev/stdout") cannot be replaced: it is written at once, and never removed.
/// Bytes are written as they are: line ends are the same on every system.
/// Failure:  the first error is kept and commit() tells it; nothing throws. A file that was not committed is removed.
class KRCOMMON_API ResultFile {
public:
    explicit ResultFile(const std::string& path);
    ~ResultFile();
    ResultFile(const ResultFile&) = delete;
    ResultFile& operator=(const ResultFile&) = delete;

    void write(std::string_view text);

    /// The reason of the first failure so far; "" while all is well.
    const std::string& getError() const { return m_error; }

    /// Gives the file its final name. 0; or 1, and the reason with the path ("report.txt: No space left on device").
    int commit(std::string& error);

    /// All of the above for a text that is ready.
    static int writeWhole(const std::string& path, std::string_view text, std::string& error);

private:
    void noteFailure_i();
    void discard_i();

    std::string m_path;
    std::string m_partPath; ///< "" when there is nothing to rename or to remove
    std::string m_error;
    std::ofstream m_file;
};

} // namespace pwr
