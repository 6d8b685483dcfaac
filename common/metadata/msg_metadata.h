#pragma once

#include "common/export.h"
#include "common/metadata/metadata.h"
#include "common/metadata/operation_metadata.h"
#include "common/pw_types.h"

#include <iosfwd>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace pwr {

/// One message of a collection: its three numbers (those of its samples' headers), the capability
/// that it serves, when it is executed, and the operations that its values come from, the constants
/// last. Owns its operations; moved, not copied.
class KRCOMMON_API MsgMetadata : public Metadata {
public:
    MsgMetadata();

    /// Numbers are 1 to 255, given by the host in loading and file order. Names must not be empty.
    MsgMetadata(pw_u32_t pluginId, pw_u32_t metricId, pw_u32_t msgId, std::string capName,
                std::string msgName);
    ~MsgMetadata() override;
    MsgMetadata(const MsgMetadata&) = delete;
    MsgMetadata& operator=(const MsgMetadata&) = delete;
    MsgMetadata(MsgMetadata&&) noexcept;
    MsgMetadata& operator=(MsgMetadata&&) noexcept;

    pw_u32_t getPluginID() const override;
    pw_u32_t getMetricID() const { return m_metricId; }
    pw_u32_t getMsgID() const { return m_msgId; }
    /// The capability's name on the command line.
    const std::string& getCapName() const { return m_capName; }
    const std::set<std::string>& getCapGroups() const { return m_capGroups; }
    const std::string& getMsgName() const { return m_msgName; }
    /// The operations in the order of adding; never null, owned by this record.
    const std::vector<const OperationMetadata*>& getMetaValues() const { return m_metaValues; }
    /// Words of the configuration that tell when the message is executed, such as "POLL".
    const std::set<std::string>& getTriggers() const { return m_triggers; }
    /// Tracepoints whose occurrence executes the message.
    const std::set<std::string>& getTracepointNames() const { return m_tracepointNames; }

    /// The host's numbers in the place of the collector's own.
    void setIDs(pw_u32_t pluginId, pw_u32_t metricId, pw_u32_t msgId);
    void addCapGroup(std::string group);
    void addTrigger(std::string trigger);
    void addTracepointName(std::string name);
    /// Adds an operation behind those already there; a null pointer adds nothing.
    void addMetaValue(std::unique_ptr<const OperationMetadata> operation);
    void addMetaValue(OperationMetadata operation);

protected:
    void serialize_i(Serializer& out) const override;
    int deserialize_i(Serializer& in, unsigned reserved) override;

private:
    pw_u32_t m_pluginId = 0;
    pw_u32_t m_metricId = 0;
    pw_u32_t m_msgId = 0;
    std::string m_capName;
    std::set<std::string> m_capGroups;
    std::string m_msgName;
    std::vector<std::unique_ptr<const OperationMetadata>> m_ownedValues;
    std::vector<const OperationMetadata*> m_metaValues; ///< the same operations, as they are handed out
    std::set<std::string> m_triggers;
    std::set<std::string> m_tracepointNames;
};

/// The record as text for people, one item a line.
KRCOMMON_API std::ostream& operator<<(std::ostream& out, const MsgMetadata& record);

} // namespace pwr
