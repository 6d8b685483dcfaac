#include "common/topology/topology_change.h"

namespace pwr {

namespace {

const char* actionName(cpu_action action) {
    switch (action) {
    case cpu_action::OFFLINE: return "OFFLINE";
    case cpu_action::ONLINE_PREPARE: return "ONLINE PREPARE";
    case cpu_action::ONLINE: return "ONLINE";
    }
    return "NOP";
}

pw_s32_t moduleOf(pw_u16_t core, std::size_t coresPerModule) {
    return coresPerModule == 0 ? -1 : static_cast<pw_s32_t>(core / coresPerModule);
}

} // namespace

TopologyChange::TopologyChange() : m_actionName(actionName(m_action)) {}

TopologyChange::TopologyChange(const tw_driver_topology_change& record, std::size_t coresPerModule)
    : m_timestamp(record.timestamp), m_action(static_cast<cpu_action>(record.type)),
      m_logicalProcessorId(record.cpu), m_coreId(record.core), m_packageId(record.pkg),
      m_moduleId(moduleOf(record.core, coresPerModule)), m_actionName(actionName(m_action)) {}

} // namespace pwr
