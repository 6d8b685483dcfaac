#include <string>

#include "common/model/data_handle.h"
#include "common/model/process.h"
#include "common/model/thread.h"
#include "common/values/data.h"
#include "common/values/formatter.h"

namespace pwr {

namespace {

std::string processText(const DataHandle& handle) {
    const auto* const process = dynamic_cast<const Process*>(&handle);
    return process != nullptr ? std::to_string(process->getProcessId()) : handle.getName();
}

std::string threadText(const DataHandle& handle) {
    const auto* const thread = dynamic_cast<const Thread*>(&handle);
    return thread != nullptr ? std::to_string(thread->getThreadId()) : handle.getName();
}

/// A pair carries its value as the description of its name; one without is its name alone.
std::string pairText(const DataHandle& handle) {
    if (handle.getDescription().empty()) return handle.getName();
    return handle.getDescription() + " - " + handle.getName();
}

struct HandleText {
    DataHandleType type;
    std::string (*text)(const DataHandle& handle);
};

// The kinds that print more than their name.
constexpr HandleText HANDLE_TEXTS[] = {
    {DataHandleType::PROCESS, processText},
    {DataHandleType::THREAD, threadText},
    {DataHandleType::NAME_VALUE, pairText},
};

std::string textOf(const DataHandle& handle) {
    for (const HandleText& row : HANDLE_TEXTS)
        if (row.type == handle.getHandleType()) return row.text(handle);
    return handle.getName();
}

} // namespace

int Formatter::formatHandle(const Formatter& formatter, std::string& out, const Data& value) {
    out.clear();
    const DataHandle* handle = nullptr;
    if (value.toHandle(handle) != 0) return 1;
    out = textOf(*handle);
    return formatter.finish_i(out);
}

} // namespace pwr
