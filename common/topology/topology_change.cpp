#include "common/topology/topology_change.h"

#include "common/metadata/serializer.h"
#include "common/plugin/logger.h"

#include <ostream>
#include <utility>

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

void TopologyChange::serialize(Serializer& out) const {
    out.write(m_timestamp, static_cast<pw_u32_t>(m_action), m_logicalProcessorId, m_coreId, m_packageId,
              static_cast<pw_u32_t>(m_moduleId));
}

int TopologyChange::deserialize(Serializer& in) {
    TopologyChange read;
    if (in.read(read.m_timestamp) == 0) {
        logWarning("WARNING: couldn't extract timestamp for topology change!\n");
        return -1;
    }
    pw_u32_t action = 0;
    if (in.read(action) == 0) {
        logWarning("WARNING: couldn't extract type for topology change!\n");
        return -1;
    }
    if (in.read(read.m_logicalProcessorId) == 0) {
        logWarning("WARNING: couldn't extract cpu id for topology change!\n");
        return -1;
    }
    if (in.read(read.m_coreId) == 0) {
        logWarning("WARNING: couldn't extract core id for topology change!\n");
        return -1;
    }
    if (in.read(read.m_packageId) == 0) {
        logWarning("WARNING: couldn't extract pkg id for topology change!\n");
        return -1;
    }
    pw_u32_t module = 0;
    if (in.read(module) == 0) {
        logWarning("WARNING: couldn't extract module id for topology change!\n");
        return -1;
    }
    read.m_action = static_cast<cpu_action>(action);
    read.m_actionName = actionName(read.m_action);
    read.m_moduleId = static_cast<pw_s32_t>(module);
    *this = std::move(read);
    return 0;
}

std::ostream& operator<<(std::ostream& out, const TopologyChange& change) {
    return out << "Top Change:\n"
               << "\ttsc = " << std::to_string(change.getTimestamp()) << '\n'
               << "\ttype = " << change.getActionName() << '\n'
               << "\tlogicalProcID = " << std::to_string(change.getLogicalProcessorID()) << '\n'
               << "\tcoreID = " << std::to_string(change.getCoreID()) << '\n'
               << "\tmoduleID = " << std::to_string(change.getModuleID()) << '\n'
               << "\tpkgID = " << std::to_string(change.getPackageID()) << '\n';
}

} // namespace pwr
