#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "common/config/operation.h"
#include "common/config/pw_set.h"
#include "common/export.h"
#include "common/pw_types.h"

namespace pwr {

class EntityHandle;
class MsgMetadata;

/// A message: one unit of collection work. Which operations it carries out, when (triggers), on which processors.
/// All its operations belong to one collector and support its command. What is refused changes nothing.
/// Owns its operations. Messages of the hardware description belong to the parser until that is destroyed.
class KRCOMMON_API InputMsg {
public:
    /// The level of detail of a collection: at the highest one a message may have triggers of its own.
    enum class Detail : std::uint8_t { NORMAL = 0, MAX = 1 };

    /// When a message is carried out: trigger words and, for two of them, which occurrences.
    struct TriggerSet {
        PWSet triggers;
        PWSet tracepointNames;
        PWSet notifierNames;
        bool operator==(const TriggerSet&) const = default;
    };

    explicit InputMsg(const std::string& name);
    InputMsg(const std::string& name, const std::string& configfilePrefix);
    InputMsg(const std::string& name, int pluginId, int metricId, int msgId);
    ~InputMsg();
    InputMsg(const InputMsg&) = delete;
    InputMsg& operator=(const InputMsg&) = delete;

    /// A copy with operations of its own.
    std::unique_ptr<InputMsg> clone() const;

    /// The tag of its statements.
    const std::string& getName() const { return m_name; }
    /// Platform prefix, configuration prefix and name, as they begin its statements.
    std::string getFullName() const;
    /// The command-line name of its capability, and that capability's groups.
    const std::string& getFeatureName() const { return m_featureName; }
    void setFeatureName(const std::string& name) { m_featureName = name; }
    const PWSet& getCapGroups() const { return m_capGroups; }
    void setCapGroups(const PWSet& groups) { m_capGroups = groups; }
    /// The platform that it was asked for, and the one whose statements made it.
    const std::string& getPlatformName() const { return m_platformName; }
    void setPlatformName(const std::string& name) { m_platformName = name; }
    const std::string& getPlatformPrefix() const { return m_platformPrefix; }
    void setPlatformPrefix(const std::string& prefix) { m_platformPrefix = prefix; }
    const std::string& getConfigfilePrefix() const { return m_configfilePrefix; }
    void setConfigfilePrefix(const std::string& prefix) { m_configfilePrefix = prefix; }

    /// The number that the hardware description gives it, not that of its samples; 0 until set.
    int getMsgID() const { return m_msgId; }
    void setMsgID(int id) { m_msgId = id; }
    int getMetricID() const { return m_metricId; }
    void setMetricID(int id) { m_metricId = id; }
    int getPluginID() const { return m_pluginId; }
    void setPluginID(int id) { m_pluginId = id; }
    /// Milliseconds; 0 means that of the collection.
    pw_u32_t getSamplingInterval() const { return m_samplingInterval; }
    void setSamplingInterval(pw_u32_t milliseconds) { m_samplingInterval = milliseconds; }
    /// The processors it runs on, as the hardware description words it.
    const std::string& getCPUString() const { return m_cpuString; }
    void setCPUString(const std::string& cpus) { m_cpuString = cpus; }
    /// Not owned; null until set.
    const EntityHandle* getEntity() const { return m_entity; }
    void setEntity(const EntityHandle* entity) { m_entity = entity; }

    TWOpCommand getCommand() const { return m_command; }

    /// Adds a trigger: 0 when it was added or was there already. -1, with a text, when the message or one of its
    /// operations does something else, or when the trigger cannot go with those that are there: "INIT", "FINI"
    /// and "REQUIREMENTS" stand alone. The first trigger decides the command.
    int addTrigger(TWOpCommand command, const std::string& trigger, Detail detail = Detail::NORMAL);
    int addReadTrigger(const std::string& trigger) { return addTrigger(TWOpCommand::READ, trigger); }
    int addWriteTrigger(const std::string& trigger) { return addTrigger(TWOpCommand::WRITE, trigger); }
    /// The trigger of a message for which its statements name none: read at "INIT". It can be taken back, and only it.
    void addImplicitTrigger();
    void removeImplicitTrigger();
    void addTracepointName(const std::string& name, Detail detail = Detail::NORMAL);
    void addNotifierName(const std::string& name, Detail detail = Detail::NORMAL);
    const PWSet& getTriggers() const { return m_normal.triggers; }
    const PWSet& getTracepointNames() const { return m_normal.tracepointNames; }
    const PWSet& getNotifierNames() const { return m_normal.notifierNames; }
    const TriggerSet& getTriggerSet(Detail detail) const {
        return detail == Detail::MAX ? m_maxDetail : m_normal;
    }
    /// The triggers of the highest detail take the place of the normal ones, where there are any.
    void useMaxDetail();

    /// Appends an operation. Takes ownership on 0; on -1, after a warning, it stays the caller's.
    int addOperation(Operation* operation);
    const std::vector<Operation*>& getOperations() const { return m_operations; }
    unsigned getOperationCount() const { return static_cast<unsigned>(m_operations.size()); }
    std::vector<Operation*>::const_iterator begin() const { return m_operations.begin(); }
    std::vector<Operation*>::const_iterator end() const { return m_operations.end(); }
    void resetOperations();
    /// The operation that the message's own statements made for a collector type, "" for the constants; null when
    /// there is none. What came from a group or a source is not meant.
    Operation* findOwnOperation(std::string_view collectorType) const;

    /// Makes another message a part of this one: copies of its operations are appended, and it is carried out
    /// with this one instead of by itself. Both need the same collector and the same triggers; a group without
    /// triggers takes the member's. 0, or -1 after a warning.
    int append(InputMsg& member);
    /// Takes copies of another message's operations while this one has none. 0, or -1 after a warning.
    int sourceFrom(InputMsg& source);
    bool isGroupMember() const { return m_isGroupMember; }
    /// Whether its operations were copied to a group or by a source: later ones do not reach the copies.
    bool isCopied() const { return m_isCopied; }

    /// Has the whole message carried out at once by the collector of its first operation, which gets the pairs of
    /// name and value with a read; a message without command is read. Gives the collector's result, or -1.
    int execute(const std::vector<std::pair<std::string, std::string>>& values) const;

    /// The record of the message as it is saved: its operations in order, and behind them all constants as one
    /// operation, in which the message's own go before those of a group or a source.
    std::unique_ptr<MsgMetadata> createMsgMetadata() const;

private:
    TriggerSet& triggerSet_i(Detail detail) { return detail == Detail::MAX ? m_maxDetail : m_normal; }
    bool isTriggerCompatible_i(const TriggerSet& set, const std::string& trigger) const;
    bool areOperationsCompatible_i(TWOpCommand command) const;
    bool hasCollectorOf_i(const InputMsg& other) const;
    bool areReadTriggersCompatible_i(const InputMsg& member, Detail detail) const;
    void copyOperationsOf_i(const InputMsg& other);
    void copyOperation_i(const Operation& operation);
    void take_i(Operation* operation);

    std::string m_name;
    std::string m_configfilePrefix;
    std::string m_featureName;
    std::string m_platformName;
    std::string m_platformPrefix;
    std::string m_cpuString;
    PWSet m_capGroups;
    int m_pluginId = 0;
    int m_metricId = 0;
    int m_msgId = 0;
    pw_u32_t m_samplingInterval = 0;
    TWOpCommand m_command = TWOpCommand::UNSET;
    bool m_isGroupMember = false;
    bool m_isCopied = false;
    bool m_isTriggerImplicit = false;
    TriggerSet m_normal;
    TriggerSet m_maxDetail;
    std::vector<std::unique_ptr<Operation>> m_ownedOperations;
    std::vector<Operation*> m_operations; ///< the same, as they are handed out
    std::vector<Operation*>
        m_ownOperations; ///< those of its own tag, which are few whatever a group has copied
    std::unordered_set<std::string> m_heldWork; ///< what it holds already, as soon as it is a group
    const Operation* m_work = nullptr;          ///< the first that has a collector: it speaks for all of them
    const EntityHandle* m_entity = nullptr;
};

} // namespace pwr
