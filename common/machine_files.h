#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "common/export.h"

namespace pwr {

/// How a question to a machine's files ended. Reasons in reports are made from it, so it
/// separates what a user can mend (no permission) from what the machine lacks (missing) and
/// from what it cannot tell right now (no answer: an offline processor, a sleeping sensor).
enum class MachineStatus : std::uint8_t { OK = 0, MISSING, DENIED, NO_ANSWER, FAILED };

/// One word per status ("ok", "missing", "denied", "no-answer", "failed"), also used in bundles.
KRCOMMON_API const char* toText(MachineStatus status);

/// An open file of a machine, made for reading the same counters again and again.
/// Threads: one at a time; different handles may be read by different threads.
class KRCOMMON_API MachineFile {
public:
    MachineFile() = default;
    MachineFile(const MachineFile&) = delete;
    MachineFile& operator=(const MachineFile&) = delete;
    virtual ~MachineFile();

    /// Reads the whole file from its start into `out`, whose capacity is reused, so that a
    /// steady state costs no allocation. On failure `out` is empty. A file that vanished and
    /// came back (a processor that went offline) is opened again by its path.
    virtual MachineStatus read(std::string& out) = 0;

    /// Fills `bytes` from an offset on, for files that are tables of binary counters. MISSING when the file
    /// ends before, and on every failure the bytes mean nothing.
    virtual MachineStatus readAt(std::uint64_t offset, std::span<char> bytes) = 0;
};

/// The files of a machine, either the one that the program runs on, a copied root folder, or
/// a bundle (machine_bundle.h). Paths are absolute, with "/" on every system ("/proc/stat").
/// Failure: a status other than OK; outputs are then empty. Nothing is logged.
class KRCOMMON_API MachineFiles {
public:
    MachineFiles() = default;
    MachineFiles(const MachineFiles&) = delete;
    MachineFiles& operator=(const MachineFiles&) = delete;
    virtual ~MachineFiles();

    virtual MachineStatus read(const std::string& path, std::string& out) const = 0;

    /// The names in a folder in natural order ("cpu2" before "cpu10"), without "." and "..".
    virtual MachineStatus list(const std::string& path, std::vector<std::string>& names) const = 0;

    /// The text of a symbolic link as it stands; MISSING when the path is no link.
    virtual MachineStatus readLink(const std::string& path, std::string& target) const = 0;

    /// True for files, folders and links, readable or not.
    virtual bool exists(const std::string& path) const = 0;

    /// A handle for repeated reads; null with the reason in `status`.
    virtual std::unique_ptr<MachineFile> open(const std::string& path, MachineStatus& status) const = 0;

    /// Writes a text over what a file holds; makes no file. DENIED for a recorded machine, and for what a link leads to
    /// outside of a root folder.
    virtual MachineStatus write(const std::string& path, std::string_view text) const;

    /// The instants (ticks of a 1000 MHz default clock, ascending) at which recorded contents
    /// change; empty for a live machine. A host that replays a bundle installs a clock that is
    /// told the time and steps it from one moment to the next.
    virtual const std::vector<std::uint64_t>& moments() const;

    /// The first moment later than `after`; false when there is none.
    bool nextMoment(std::uint64_t after, std::uint64_t& moment) const;
};

/// Opens a machine by its place: "/" or any folder is a root folder to which paths are joined,
/// a regular file is a bundle. Null with a sentence in `reason` (file, line, what) when the
/// place does not exist or the bundle is malformed.
KRCOMMON_API std::unique_ptr<MachineFiles> openMachine(const std::string& where, std::string& reason);

/// All paths of the machine that match a pattern, in natural order. `*` stands for any text
/// inside one path component; everything else is literal.
KRCOMMON_API std::vector<std::string> matchPaths(const MachineFiles& machine, const std::string& pattern);

/// Order of names with numbers in them: digit runs compare as numbers, other bytes as bytes.
KRCOMMON_API bool naturalLess(const std::string& left, const std::string& right);

} // namespace pwr
