#include <algorithm>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include "plugins/collectors/tracefs/buffer_size.h"
#include "plugins/collectors/tracefs/posix/tracefs_library.h"
#include "plugins/collectors/tracefs/trace_source.h"

namespace tracefs {

namespace {

// The process that an instance belongs to stands in its name, so that those of the dead can be told.
constexpr std::string_view INSTANCE_HEAD = "tarnwell-";
constexpr int MOST_OF_A_PROCESS = 64;
constexpr const char* RIGHTS_FIX =
    "run as root (tracing needs CAP_SYS_ADMIN and the right to /sys/kernel/tracing)";

struct FreeInstance {
    void operator()(tracefs_instance* instance) const { tracefs_instance_free(instance); }
};
using InstanceHandle = std::unique_ptr<tracefs_instance, FreeInstance>;

struct FreeText {
    void operator()(char* text) const { std::free(text); }
};

std::string instancesFolder() {
    return std::string(TRACING_FOLDER) + "/instances";
}

/// 0, or the error's number, by the rights that the process acts with.
int whyNot(const std::string& path, int mode) {
    return faccessat(AT_FDCWD, path.c_str(), mode, AT_EACCESS) == 0 ? 0 : errno;
}

std::vector<std::string> namesIn(const std::string& folder) {
    std::vector<std::string> names;
    DIR* const directory = opendir(folder.c_str());
    if (directory == nullptr) {
        return names;
    }
    while (const dirent* const entry = readdir(directory)) {
        if (entry->d_name[0] != '.') {
            names.emplace_back(entry->d_name);
        }
    }
    closedir(directory);
    return names;
}

/// What a process of ours left when it died. Processes in containers get the same few numbers again and again, so this
/// one's number is as good as a dead one's. One that lives in another namespace looks dead, and this one may trace
/// already, but the kernel keeps an instance whose files somebody has open.
void removeLeftovers() {
    for (const std::string& name : namesIn(instancesFolder())) {
        pid_t process = 0;
        const char* const begin = name.data() + INSTANCE_HEAD.size();
        if (!name.starts_with(INSTANCE_HEAD) ||
            std::from_chars(begin, name.data() + name.size(), process).ec != std::errc() || process <= 0) {
            continue;
        }
        if (process == getpid() || (kill(process, 0) != 0 && errno == ESRCH)) {
            const InstanceHandle left(tracefs_instance_alloc(TRACING_FOLDER, name.c_str()));
            if (left) {
                tracefs_instance_destroy(left.get());
            }
        }
    }
}

/// The number behind a word at the start of a line of per_cpu/cpuN/stats.
std::uint64_t countOf(std::string_view stats, std::string_view word) {
    const std::size_t at = stats.find(word);
    if (at == std::string_view::npos || (at != 0 && stats[at - 1] != '\n')) {
        return 0;
    }
    stats.remove_prefix(at + word.size());
    stats.remove_prefix(std::min(stats.find_first_not_of(' '), stats.size()));
    std::uint64_t count = 0;
    std::from_chars(stats.data(), stats.data() + stats.size(), count);
    return count;
}

std::pair<std::string, std::string> split(const std::string& tracepoint) {
    const std::size_t colon = tracepoint.find(':');
    return {tracepoint.substr(0, colon), tracepoint.substr(colon + 1)};
}

class LiveTrace : public TraceSource {
public:
    explicit LiveTrace(std::size_t pageSize) : m_pageSize(pageSize) {}
    ~LiveTrace() override {
        for (const int file : m_files) {
            close(file);
        }
        if (m_instance) {
            tracefs_instance_destroy(m_instance.get());
        }
    }

    int open(Refusal& refusal) {
        removeLeftovers();
        for (int number = 0; number < MOST_OF_A_PROCESS; ++number) {
            const std::string name =
                std::string(INSTANCE_HEAD) + std::to_string(getpid()) + "-" + std::to_string(number);
            m_instance.reset(tracefs_instance_create(name.c_str()));
            if (m_instance == nullptr) {
                return refuse_i("cannot make an instance of its own for tracing", refusal);
            }
            if (tracefs_instance_is_new(m_instance.get())) {
                return prepare_i(refusal);
            }
            m_instance.reset(); // another's in this process
        }
        refusal.reason = "this process has too many instances for tracing already";
        return 1;
    }

    int enable(const std::string& tracepoint, Refusal& refusal) override {
        const auto [system, event] = split(tracepoint);
        if (tracefs_event_enable(m_instance.get(), system.c_str(), event.c_str()) != 0) {
            return refuse_i("the kernel does not trace " + tracepoint, refusal);
        }
        return 0;
    }

    void disable(const std::string& tracepoint) override {
        const auto [system, event] = split(tracepoint);
        tracefs_event_disable(m_instance.get(), system.c_str(), event.c_str());
    }

    bool readPage(std::size_t processor, std::vector<char>& page) override {
        page.resize(m_pageSize);
        const ssize_t size = ::read(m_files[processor], page.data(), page.size());
        page.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
        return size > 0;
    }

    std::uint64_t lost(std::size_t processor) override {
        const std::string file = "per_cpu/cpu" + std::to_string(m_processors[processor]) + "/stats";
        const std::unique_ptr<char, FreeText> text(
            tracefs_instance_file_read(m_instance.get(), file.c_str(), nullptr));
        const std::string_view stats = text ? text.get() : "";
        return countOf(stats, "overrun:") + countOf(stats, "commit overrun:") +
               countOf(stats, "dropped events:");
    }

private:
    /// The clock goes first, since changing it empties the buffers; and the size before the first event is enabled.
    int prepare_i(Refusal& refusal) {
        constexpr const char* CLOCK = "mono";
        if (tracefs_instance_file_write(m_instance.get(), "trace_clock", CLOCK) < 0) {
            return refuse_i("the kernel cannot stamp its trace with the monotonic clock", refusal);
        }
        openFiles_i();
        if (m_files.empty()) {
            return refuse_i("the trace of no processor can be opened", refusal);
        }
        const auto memory = static_cast<std::uint64_t>(sysconf(_SC_PHYS_PAGES)) *
                            static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
        const std::size_t size = bufferKilobytes(memory, m_files.size());
        if (tracefs_instance_set_buffer_size(m_instance.get(), size, -1) != 0) {
            return refuse_i("there is no memory for the trace's buffers", refusal);
        }
        return 0;
    }

    void openFiles_i() {
        const std::unique_ptr<char, FreeText> folder(tracefs_instance_get_file(m_instance.get(), "per_cpu"));
        std::vector<std::string> names = namesIn(folder.get());
        std::sort(names.begin(), names.end(), &pwr::naturalLess);
        for (const std::string& name : names) {
            constexpr std::string_view HEAD = "cpu";
            unsigned number = 0;
            if (!name.starts_with(HEAD) ||
                std::from_chars(name.data() + HEAD.size(), name.data() + name.size(), number).ec !=
                    std::errc()) {
                continue;
            }
            const std::string path = "per_cpu/" + name + "/trace_pipe_raw";
            const int file =
                tracefs_instance_file_open(m_instance.get(), path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
            if (file >= 0) {
                m_files.push_back(file);
                m_processors.push_back(number);
            }
        }
    }

    static int refuse_i(const std::string& what, Refusal& refusal) {
        const int error = errno;
        refusal.reason = what + ": " + std::strerror(error);
        refusal.fix = error == EPERM || error == EACCES || error == EROFS ? RIGHTS_FIX : "";
        return 1;
    }

    std::size_t m_pageSize;
    InstanceHandle m_instance;
    std::vector<int> m_files; // by the processor's place
};

} // namespace

bool canTrace(Refusal& refusal) {
    const std::string folder = TRACING_FOLDER;
    int error = whyNot(folder + "/events", R_OK | X_OK);
    if (error == ENOENT) {
        refusal = {"tracefs is not mounted (" + folder + ")",
                   "mount it as root: mount -t tracefs tracefs " + folder};
        return false;
    }
    error = error == 0 ? whyNot(instancesFolder(), W_OK | X_OK) : error;
    if (error != 0) {
        refusal = {"this program may not trace (" + folder + ")", RIGHTS_FIX};
    }
    return error == 0;
}

std::unique_ptr<TraceSource> openLiveTrace(std::size_t pageSize, Refusal& refusal) {
    if (!canTrace(refusal)) {
        return nullptr;
    }
    auto trace = std::make_unique<LiveTrace>(pageSize);
    return trace->open(refusal) == 0 ? std::move(trace) : nullptr;
}

} // namespace tracefs
