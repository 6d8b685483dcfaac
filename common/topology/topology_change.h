#pragma once

#include "common/driver_interface.h"
#include "common/export.h"
#include "common/pw_types.h"

#include <cstddef>
#include <iosfwd>
#include <string>

namespace pwr {

class Serializer;

/// What happened to a processor; any other number means nothing. Persistent: never renumber.
enum class cpu_action : pw_u32_t { OFFLINE = 1, ONLINE_PREPARE = 2, ONLINE = 3 };

/// One logical processor that went offline or came online while collecting.
class KRCOMMON_API TopologyChange {
public:
    TopologyChange();

    /// From the driver's record. The module is core / coresPerModule, or unknown for 0 cores per module.
    TopologyChange(const tw_driver_topology_change& record, std::size_t coresPerModule);

    /// When it happened, in ticks.
    pw_u64_t getTimestamp() const { return m_timestamp; }
    /// Sets another time, for readers that move a collection to another time base.
    void resetTimestamp(pw_u64_t timestamp) { m_timestamp = timestamp; }
    cpu_action getActionType() const { return m_action; }
    /// "OFFLINE", "ONLINE PREPARE", "ONLINE", or "NOP" for any other action.
    const std::string& getActionName() const { return m_actionName; }
    pw_u16_t getLogicalProcessorID() const { return m_logicalProcessorId; }
    pw_u16_t getCoreID() const { return m_coreId; }
    pw_u16_t getPackageID() const { return m_packageId; }
    /// -1 when unknown.
    pw_s32_t getModuleID() const { return m_moduleId; }

    /// Writes the change as it is saved, in 22 bytes.
    void serialize(Serializer& out) const;
    /// Reads it back: 0, or -1 and a warning about the first item that is missing; the change stays
    /// as it was then.
    int deserialize(Serializer& in);

private:
    pw_u64_t m_timestamp = 0;
    cpu_action m_action{};
    pw_u16_t m_logicalProcessorId = 0;
    pw_u16_t m_coreId = 0;
    pw_u16_t m_packageId = 0;
    pw_s32_t m_moduleId = -1;
    std::string m_actionName;
};

/// The change as text for people, in seven lines.
KRCOMMON_API std::ostream& operator<<(std::ostream& out, const TopologyChange& change);

} // namespace pwr
