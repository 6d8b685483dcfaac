#include "common/platform/child_process.h"

#include "common/platform/win32/wide_text.h"

#include <vector>

namespace pwr::platform {
namespace {

/// Quotes one argument so that the C runtime of the command splits it back to the same text:
/// backslashes are doubled only where a quote follows.
std::string quoted(const std::string& argument) {
    if (!argument.empty() && argument.find_first_of(" \t\n\v\"") == std::string::npos) {
        return argument;
    }
    std::string out = "\"";
    std::size_t backslashes = 0;
    for (const char c : argument) {
        if (c == '\\') {
            ++backslashes;
            continue;
        }
        out.append(c == '"' ? 2 * backslashes + 1 : backslashes, '\\');
        backslashes = 0;
        out += c;
    }
    out.append(2 * backslashes, '\\');
    return out + '"';
}

} // namespace

struct ChildProcess::State {
    State() = default;
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State() { CloseHandle(process); }

    HANDLE process = nullptr;
};

ChildProcess::ChildProcess(std::unique_ptr<State> state) : m_state(std::move(state)) {}
ChildProcess::~ChildProcess() = default;

std::unique_ptr<ChildProcess> ChildProcess::start(const std::vector<std::string>& command,
                                                  std::string& reason) {
    if (command.empty()) {
        reason = "no command given";
        return nullptr;
    }
    std::string line;
    for (const std::string& word : command) {
        line += (line.empty() ? "" : " ") + quoted(word);
    }
    std::wstring wideLine = wideText(line);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started{};
    if (CreateProcessW(nullptr, wideLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                       &started) == 0) {
        reason = errorText(GetLastError());
        return nullptr;
    }
    CloseHandle(started.hThread);
    auto state = std::make_unique<State>();
    state->process = started.hProcess;
    return std::unique_ptr<ChildProcess>(new ChildProcess(std::move(state)));
}

bool ChildProcess::hasEnded() {
    return WaitForSingleObject(m_state->process, 0) == WAIT_OBJECT_0;
}

int ChildProcess::wait() {
    WaitForSingleObject(m_state->process, INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(m_state->process, &code);
    return static_cast<int>(code);
}

void ChildProcess::interrupt() {}

void* ChildProcess::systemHandle() const {
    return m_state->process;
}

} // namespace pwr::platform
