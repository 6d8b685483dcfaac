#include <algorithm>
#include <array>
#include <set>
#include <string>
#include <utility>

#include "common/machine_bundle.h"

namespace pwr {

namespace {

/// The form of a path or a name inside an entry line.
std::string encodePath(const std::string& path) {
    constexpr const char* DIGITS = "0123456789ABCDEF";
    std::string text;
    for (const char c : path) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte <= ' ' || c == '%') {
            text += '%';
            text += DIGITS[byte >> 4U];
            text += DIGITS[byte & 15U];
        } else {
            text += c;
        }
    }
    return text;
}

bool isOneLine(const std::string& content) {
    return !content.empty() && content.find('\n') == content.size() - 1;
}

bool isBelowAny(const std::string& path, const std::set<std::string>& folders) {
    for (std::size_t end = path.rfind('/'); end != 0 && end != std::string::npos;
         end = path.rfind('/', end - 1)) {
        if (folders.contains(path.substr(0, end))) {
            return true;
        }
    }
    return false;
}

} // namespace

BundleWriter::BundleWriter(const MachineFiles& machine, std::vector<std::string> patterns)
    : m_machine(machine), m_patterns(std::move(patterns)), m_text("tarnwell-machine 1\n") {}

BundleWriter::~BundleWriter() = default;

std::map<std::string, BundleWriter::Entry> BundleWriter::snapshot_i() const {
    std::map<std::string, Entry> entries;
    std::vector<std::string> names;
    for (const std::string& pattern : m_patterns) {
        for (const std::string& path : matchPaths(m_machine, pattern)) {
            Entry entry;
            if (m_machine.list(path, names) != MachineStatus::OK) {
                entry.status = m_machine.read(path, entry.content);
            } else if (m_machine.readLink(path, entry.content) == MachineStatus::OK) {
                entry.isLink = true;
            } else {
                continue;
            }
            if (entry.status != MachineStatus::MISSING) {
                entries.insert_or_assign(path, std::move(entry));
            }
        }
    }
    return entries;
}

int BundleWriter::capture(std::uint64_t nanoseconds) {
    if (!m_empty && nanoseconds <= m_lastMoment) {
        return 1;
    }
    std::map<std::string, Entry> now = snapshot_i();
    m_text += "@" + std::to_string(nanoseconds) + "\n";
    writeGone_i(now);
    for (const auto& [path, entry] : now) {
        const auto last = m_last.find(path);
        if (last != m_last.end() && last->second.status == entry.status &&
            last->second.isLink == entry.isLink && last->second.content == entry.content) {
            continue;
        }
        const std::string place = " " + encodePath(path) + " ";
        if (entry.status != MachineStatus::OK) {
            m_text += "fail" + place + toText(entry.status) + "\n";
        } else if (entry.isLink) {
            m_text += "link" + place + entry.content + "\n";
        } else if (isOneLine(entry.content)) {
            m_text += "line" + place + entry.content;
        } else {
            m_text += "file" + place + std::to_string(entry.content.size()) + "\n" + entry.content + "\n";
        }
    }
    m_last = std::move(now);
    m_lastMoment = nanoseconds;
    m_empty = false;
    return 0;
}

/// A path goes together with everything below it, so what lies below one that went needs no line, and a
/// link through which something is still seen stays.
void BundleWriter::writeGone_i(std::map<std::string, Entry>& now) {
    std::set<std::string> gone;
    for (const auto& [path, entry] : m_last) {
        if (now.contains(path) || isBelowAny(path, gone)) {
            continue;
        }
        const std::string below = path + "/";
        const auto next = now.lower_bound(below);
        if (next != now.end() && next->first.starts_with(below)) {
            now.emplace(path, entry);
            continue;
        }
        m_text += "gone " + encodePath(path) + "\n";
        gone.insert(path);
    }
}

std::string BundleWriter::text() const {
    return m_text + "end\n";
}

} // namespace pwr
