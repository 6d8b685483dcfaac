#include <algorithm>
#include <utility>

#include "plugins/collectors/path_expansion.h"
#include "plugins/collectors/tracefs/trace_source.h"

namespace tracefs {

namespace {

class RecordedTrace : public TraceSource {
public:
    RecordedTrace(const pwr::MachineFiles& machine, std::size_t pageSize) : m_pageSize(pageSize) {
        std::vector<collectors::ExpandedPath> folders;
        std::string error;
        collectors::expandPath(machine, std::string(TRACING_FOLDER) + "/per_cpu/cpu{cpu}", folders, error);
        for (const collectors::ExpandedPath& folder : folders) {
            Pages pages;
            if (machine.read(folder.path + "/trace_pipe_raw", pages.bytes) == pwr::MachineStatus::OK) {
                m_processors.push_back(static_cast<unsigned>(collectors::numberOf(folder.binding, "cpu")));
                m_pages.push_back(std::move(pages));
            }
        }
    }

    int enable(const std::string& /*tracepoint*/, Refusal& /*refusal*/) override { return 0; }
    void disable(const std::string& /*tracepoint*/) override {}

    bool readPage(std::size_t processor, std::vector<char>& page) override {
        Pages& pages = m_pages[processor];
        const std::size_t size = std::min(m_pageSize, pages.bytes.size() - pages.next);
        page.assign(pages.bytes.data() + pages.next, pages.bytes.data() + pages.next + size);
        pages.next += size;
        return size != 0;
    }

    /// What the pages themselves tell is all that is known.
    std::uint64_t lost(std::size_t /*processor*/) override { return 0; }

private:
    struct Pages {
        std::string bytes;
        std::size_t next = 0;
    };

    std::size_t m_pageSize;
    std::vector<Pages> m_pages;
};

} // namespace

std::unique_ptr<TraceSource> openRecordedTrace(const pwr::MachineFiles& machine, std::size_t pageSize,
                                               Refusal& refusal) {
    auto trace = std::make_unique<RecordedTrace>(machine, pageSize);
    if (trace->processors().empty()) {
        refusal.reason = "no trace was recorded of this machine";
        return nullptr;
    }
    return trace;
}

} // namespace tracefs
