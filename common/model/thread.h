#pragma once

#include <cstdint>
#include <string>

#include "common/export.h"
#include "common/model/data_handle.h"
#include "common/model/description.h"

namespace pwr {

class Process;

/// Describes a thread of a process.
class KRCOMMON_API ThreadDescription : public Description {
public:
    explicit ThreadDescription(const std::string& name);
};

/// Identifies a thread of the operating system; formatters print its number.
class KRCOMMON_API Thread : public DataHandle {
public:
    /// Registers a new thread of a process (null when it is not known).
    static const Thread* create(std::uint32_t threadId, const Process* process, const std::string& name);

    [[nodiscard]] std::uint32_t getThreadId() const noexcept { return m_threadId; }
    [[nodiscard]] const Process* getProcess() const noexcept { return m_process; }

private:
    Thread(std::uint32_t threadId, const Process* process, const std::string& name);

    std::uint32_t m_threadId;
    const Process* m_process;
};

} // namespace pwr
