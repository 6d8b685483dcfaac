#include "common/machine_files.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include "common/machine_bundle.h"
#include "common/platform/file.h"
#include "common/platform/raw_file.h"

namespace pwr {

namespace {

struct ErrorRow {
    int error;
    MachineStatus status;
};

// What the system says when a counter exists but cannot be read at this moment (processor
// offline, sensor asleep, device gone) is not the reader's fault and passes; hence its own kind.
constexpr std::array ERROR_ROWS{
    ErrorRow{0, MachineStatus::OK},
    ErrorRow{ENOENT, MachineStatus::MISSING},
    ErrorRow{ENOTDIR, MachineStatus::MISSING},
    ErrorRow{ELOOP, MachineStatus::MISSING},
    ErrorRow{EACCES, MachineStatus::DENIED},
    ErrorRow{EPERM, MachineStatus::DENIED},
    ErrorRow{ENXIO, MachineStatus::NO_ANSWER},
    ErrorRow{ENODEV, MachineStatus::NO_ANSWER},
    ErrorRow{EIO, MachineStatus::NO_ANSWER},
    ErrorRow{EAGAIN, MachineStatus::NO_ANSWER},
    ErrorRow{EBUSY, MachineStatus::NO_ANSWER},
    ErrorRow{ENODATA, MachineStatus::NO_ANSWER},
    ErrorRow{ETIMEDOUT, MachineStatus::NO_ANSWER},
    ErrorRow{EINVAL, MachineStatus::NO_ANSWER},
    ErrorRow{EOPNOTSUPP, MachineStatus::NO_ANSWER},
};

MachineStatus statusOf(int error) {
    const auto row = std::find_if(ERROR_ROWS.begin(), ERROR_ROWS.end(),
                                  [error](const ErrorRow& r) { return r.error == error; });
    return row == ERROR_ROWS.end() ? MachineStatus::FAILED : row->status;
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// A digit run without its leading zeros; advances past the run.
std::string_view takeNumber(std::string_view& text) {
    std::size_t end = 0;
    while (end < text.size() && isDigit(text[end])) {
        ++end;
    }
    std::string_view number = text.substr(0, end);
    text.remove_prefix(end);
    number.remove_prefix(std::min(number.find_first_not_of('0'), number.size()));
    return number;
}

/// True when `name` matches `pattern` with `*` for any text; linear, no recursion.
bool matches(std::string_view name, std::string_view pattern) {
    std::size_t n = 0;
    std::size_t p = 0;
    std::size_t star = std::string_view::npos;
    std::size_t retry = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            retry = n;
        } else if (p < pattern.size() && pattern[p] == name[n]) {
            ++p;
            ++n;
        } else if (star != std::string_view::npos) {
            p = star + 1;
            n = ++retry;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', p) == std::string_view::npos;
}

class RootFile : public MachineFile {
public:
    explicit RootFile(std::string path) : m_path(std::move(path)) {}

    /// Also once more: the system takes counters away with their device and makes new ones when it returns.
    int openNow() { return m_file.open(m_path); }

    MachineStatus read(std::string& out) override {
        const int error = isUsable_i() ? m_file.readAll(out) : ENODEV;
        if (error == 0) {
            return MachineStatus::OK;
        }
        const int again = openNow();
        if (again != 0) {
            out.clear();
            return statusOf(again);
        }
        return statusOf(m_file.readAll(out));
    }

    MachineStatus readAt(std::uint64_t offset, std::span<char> bytes) override {
        std::size_t got = 0;
        int error = isUsable_i() ? m_file.readAt(offset, bytes, got) : ENODEV;
        if (error != 0) {
            error = openNow();
            error = error == 0 ? m_file.readAt(offset, bytes, got) : error;
        }
        if (error != 0) {
            return statusOf(error);
        }
        return got == bytes.size() ? MachineStatus::OK : MachineStatus::MISSING;
    }

private:
    bool isUsable_i() const { return m_file.isOpen() && !m_file.isLeftBehind(); }

    std::string m_path;
    platform::RawFile m_file;
};

/// A real folder that stands for the machine's root.
class RootMachine : public MachineFiles {
public:
    explicit RootMachine(std::string root) : m_root(std::move(root)) {
        while (!m_root.empty() && (m_root.back() == '/' || m_root.back() == '\\')) {
            m_root.pop_back();
        }
    }

    MachineStatus read(const std::string& path, std::string& out) const override {
        platform::RawFile file;
        const int error = file.open(m_root + path);
        if (error != 0) {
            out.clear();
            return statusOf(error);
        }
        return statusOf(file.readAll(out));
    }

    MachineStatus list(const std::string& path, std::vector<std::string>& names) const override {
        const MachineStatus status = statusOf(platform::listFolder(m_root + path, names));
        if (status != MachineStatus::OK) {
            names.clear();
        }
        std::sort(names.begin(), names.end(), naturalLess);
        return status;
    }

    MachineStatus readLink(const std::string& path, std::string& target) const override {
        const int error = platform::readLinkText(m_root + path, target);
        return error == EINVAL ? MachineStatus::MISSING : statusOf(error);
    }

    bool exists(const std::string& path) const override {
        std::error_code error;
        return std::filesystem::symlink_status(platform::nativePath(m_root + path), error).type() !=
                   std::filesystem::file_type::not_found &&
               !error;
    }

    std::unique_ptr<MachineFile> open(const std::string& path, MachineStatus& status) const override {
        auto file = std::make_unique<RootFile>(m_root + path);
        status = statusOf(file->openNow());
        return status == MachineStatus::OK ? std::move(file) : nullptr;
    }

    MachineStatus write(const std::string& path, std::string_view text) const override {
        return isBelowRoot_i(path) ? statusOf(platform::overwriteFile(m_root + path, text))
                                   : MachineStatus::DENIED;
    }

private:
    /// A copied folder may have links to the running machine, whose settings must stay as they are.
    bool isBelowRoot_i(const std::string& path) const {
        std::error_code error;
        const auto root = std::filesystem::weakly_canonical(platform::nativePath(m_root + "/"), error);
        const auto file = std::filesystem::weakly_canonical(platform::nativePath(m_root + path), error);
        return !error &&
               std::mismatch(root.begin(), root.end(), file.begin(), file.end()).first == root.end();
    }

    std::string m_root;
};

} // namespace

const char* toText(MachineStatus status) {
    constexpr std::array NAMES{"ok", "missing", "denied", "no-answer", "failed"};
    return NAMES.at(static_cast<std::size_t>(status));
}

MachineFile::~MachineFile() = default;

MachineFiles::~MachineFiles() = default;

MachineStatus MachineFiles::write(const std::string& /*path*/, std::string_view /*text*/) const {
    return MachineStatus::DENIED;
}

const std::vector<std::uint64_t>& MachineFiles::moments() const {
    static const std::vector<std::uint64_t> NONE;
    return NONE;
}

bool MachineFiles::nextMoment(std::uint64_t after, std::uint64_t& moment) const {
    const std::vector<std::uint64_t>& all = moments();
    const auto next = std::upper_bound(all.begin(), all.end(), after);
    if (next == all.end()) {
        return false;
    }
    moment = *next;
    return true;
}

std::unique_ptr<MachineFiles> openMachine(const std::string& where, std::string& reason) {
    std::error_code error;
    const auto type = std::filesystem::status(platform::nativePath(where), error).type();
    if (type == std::filesystem::file_type::directory) {
        return std::make_unique<RootMachine>(where);
    }
    if (type == std::filesystem::file_type::regular) {
        return MachineBundle::load(where, reason);
    }
    reason = where + (type == std::filesystem::file_type::not_found ? ": no such machine folder or bundle"
                                                                    : ": neither a folder nor a bundle file");
    return nullptr;
}

std::vector<std::string> matchPaths(const MachineFiles& machine, const std::string& pattern) {
    std::vector<std::string> found{""};
    std::size_t begin = 0;
    while (begin < pattern.size() && !found.empty()) {
        const std::size_t start = pattern[begin] == '/' ? begin + 1 : begin;
        const std::size_t end = std::min(pattern.find('/', start), pattern.size());
        const std::string part = pattern.substr(start, end - start);
        begin = end;
        if (part.find('*') == std::string::npos) {
            for (std::string& path : found) {
                path += "/" + part;
            }
            continue;
        }
        std::vector<std::string> next;
        std::vector<std::string> names;
        for (const std::string& path : found) {
            machine.list(path.empty() ? "/" : path, names);
            for (const std::string& name : names) {
                if (matches(name, part)) {
                    next.push_back(path + "/" + name);
                }
            }
        }
        found = std::move(next);
    }
    std::erase_if(found, [&machine](const std::string& path) { return !machine.exists(path); });
    return found;
}

bool naturalLess(const std::string& left, const std::string& right) {
    std::string_view l = left;
    std::string_view r = right;
    while (!l.empty() && !r.empty()) {
        if (isDigit(l.front()) && isDigit(r.front())) {
            const std::string_view a = takeNumber(l);
            const std::string_view b = takeNumber(r);
            if (a != b) {
                return a.size() != b.size() ? a.size() < b.size() : a < b;
            }
        } else if (l.front() != r.front()) {
            return static_cast<unsigned char>(l.front()) < static_cast<unsigned char>(r.front());
        } else {
            l.remove_prefix(1);
            r.remove_prefix(1);
        }
    }
    // "a1" and "a01" are equal as numbers; the bytes keep the order total.
    return l.empty() != r.empty() ? l.empty() : left < right;
}

} // namespace pwr
