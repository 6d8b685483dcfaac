#include "common/model/process.h"

#include <memory>

#include "common/model/data_handle_provider.h"

namespace pwr {

ProcessDescription::ProcessDescription(const std::string& name)
    : Description(DescriptionType::PROCESS, name, "") {}

Process::Process(std::uint32_t processId, const std::string& name)
    : DataHandle(ProcessDescription(name), DataHandleType::PROCESS), m_processId(processId) {}

const Process* Process::create(std::uint32_t processId, const std::string& name) {
    return DataHandleProvider::adopt(std::unique_ptr<Process>(new Process(processId, name)));
}

} // namespace pwr
