#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "common/export.h"
#include "common/machine_files.h"

namespace pwr {

/// A machine recorded in one text file: what its files held at one or more moments.
///
///     tarnwell-machine 1
///     @1000000000                            moment in nanoseconds; strictly ascending
///     line /sys/class/net/lo/mtu 65536       a file of one line; the line end is implied
///     file /proc/stat 1042                   a file of that many bytes, which follow,
///     <1042 bytes>                           then one line end
///     link /sys/class/net/eth0 ../../x/eth0  a symbolic link and its text
///     fail /sys/x/energy_uj denied           present but not readable: denied, no-answer, failed
///     @1200000000                            later moments hold only what changed
///     gone /sys/x                            the file, link or whole folder vanished
///     end
///
/// Blanks, "%" and bytes below 0x20 in paths are written as %XX. Folders are implied. Lines
/// that start with "#" between entries are remarks. Nothing else is tolerated: the reader
/// says file, line and what is wrong, and never believes a length before checking it.
/// Answers hold for the newest moment that is not later than the default clock's reading; a
/// reading before the first moment gets the first.
class KRCOMMON_API MachineBundle : public MachineFiles {
public:
    /// Parses a bundle's text. Null with "NAME:LINE: what" in `reason` when it is malformed.
    static std::unique_ptr<MachineBundle> parse(const std::string& name, std::string_view text,
                                                std::string& reason);

    /// Reads and parses a bundle file.
    static std::unique_ptr<MachineBundle> load(const std::string& file, std::string& reason);

    ~MachineBundle() override;

    MachineStatus read(const std::string& path, std::string& out) const override;
    MachineStatus list(const std::string& path, std::vector<std::string>& names) const override;
    MachineStatus readLink(const std::string& path, std::string& target) const override;
    bool exists(const std::string& path) const override;
    std::unique_ptr<MachineFile> open(const std::string& path, MachineStatus& status) const override;
    const std::vector<std::uint64_t>& moments() const override;

private:
    friend class BundleParser;
    friend class BundleFile;
    struct Version;
    struct Node;

    MachineBundle();
    std::size_t currentMoment_i() const;
    const Node* find_i(const std::string& path, std::size_t moment, bool followLast) const;
    static bool isPresent_i(const Node& node, std::size_t moment);

    std::vector<std::uint64_t> m_moments;
    std::unique_ptr<Node> m_root;
};

/// Records a machine: the first capture() writes a full snapshot of all paths that match the
/// patterns (see matchPaths), each later one only what changed. Folders that a pattern names
/// are not descended into; links to folders are recorded as links, links to files as files.
/// The text grows in memory until the caller saves it, so a half capture never looks whole.
class KRCOMMON_API BundleWriter {
public:
    /// Keeps a reference to the machine, which must outlive the writer.
    BundleWriter(const MachineFiles& machine, std::vector<std::string> patterns);
    ~BundleWriter();

    /// Adds the machine's present contents under a moment in nanoseconds (ticks of a 1000 MHz
    /// clock). A moment that is not later than the one before is refused with 1.
    int capture(std::uint64_t nanoseconds);

    /// The whole bundle so far, closed with its last line.
    std::string text() const;

private:
    struct Entry {
        MachineStatus status = MachineStatus::OK;
        bool isLink = false;
        std::string content;
    };

    std::map<std::string, Entry> snapshot_i() const;
    void writeGone_i(std::map<std::string, Entry>& now);

    const MachineFiles& m_machine;
    std::vector<std::string> m_patterns;
    std::map<std::string, Entry> m_last;
    std::string m_text;
    std::uint64_t m_lastMoment = 0;
    bool m_empty = true;
};

} // namespace pwr
