#pragma once

#include <cstdint>
#include <string>

#include "common/export.h"
#include "common/model/data_handle.h"
#include "common/model/description.h"

namespace pwr {

/// Describes a process of the operating system.
class KRCOMMON_API ProcessDescription : public Description {
public:
    explicit ProcessDescription(const std::string& name);
};

/// Identifies a process of the operating system; formatters print its number.
class KRCOMMON_API Process : public DataHandle {
public:
    /// Registers a new process, which stays known after the process itself has ended.
    static const Process* create(std::uint32_t processId, const std::string& name);

    [[nodiscard]] std::uint32_t getProcessId() const noexcept { return m_processId; }

private:
    Process(std::uint32_t processId, const std::string& name);

    std::uint32_t m_processId;
};

} // namespace pwr
