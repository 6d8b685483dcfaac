#include "common/model/thread.h"

#include <memory>

#include "common/model/data_handle_provider.h"

namespace pwr {

ThreadDescription::ThreadDescription(const std::string& name)
    : Description(DescriptionType::THREAD, name, "") {}

Thread::Thread(std::uint32_t threadId, const Process* process, const std::string& name)
    : DataHandle(ThreadDescription(name), DataHandleType::THREAD), m_threadId(threadId), m_process(process) {}

const Thread* Thread::create(std::uint32_t threadId, const Process* process, const std::string& name) {
    return DataHandleProvider::adopt(std::unique_ptr<Thread>(new Thread(threadId, process, name)));
}

} // namespace pwr
