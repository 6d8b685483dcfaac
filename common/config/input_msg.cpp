#include "common/config/input_msg.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>

#include "common/config/operation_dispatch.h"
#include "common/metadata/msg_metadata.h"
#include "common/plugin/collector_plugin.h"
#include "common/plugin/logger.h"

namespace pwr {

namespace {

constexpr std::array<std::string_view, 3> EXCLUSIVE_TRIGGERS = {"INIT", "FINI", "REQUIREMENTS"};

bool isExclusive(std::string_view trigger) {
    return std::find(EXCLUSIVE_TRIGGERS.begin(), EXCLUSIVE_TRIGGERS.end(), trigger) !=
           EXCLUSIVE_TRIGGERS.end();
}

} // namespace

InputMsg::InputMsg(const std::string& name) : m_name(name) {}

InputMsg::InputMsg(const std::string& name, const std::string& configfilePrefix)
    : m_name(name), m_configfilePrefix(configfilePrefix) {}

InputMsg::InputMsg(const std::string& name, int pluginId, int metricId, int msgId)
    : m_name(name), m_pluginId(pluginId), m_metricId(metricId), m_msgId(msgId) {}

InputMsg::~InputMsg() = default;

std::unique_ptr<InputMsg> InputMsg::clone() const {
    auto copy = std::make_unique<InputMsg>(m_name, m_pluginId, m_metricId, m_msgId);
    copy->m_configfilePrefix = m_configfilePrefix;
    copy->m_featureName = m_featureName;
    copy->m_platformName = m_platformName;
    copy->m_platformPrefix = m_platformPrefix;
    copy->m_cpuString = m_cpuString;
    copy->m_capGroups = m_capGroups;
    copy->m_samplingInterval = m_samplingInterval;
    copy->m_command = m_command;
    copy->m_isGroupMember = m_isGroupMember;
    copy->m_normal = m_normal;
    copy->m_maxDetail = m_maxDetail;
    copy->m_entity = m_entity;
    copy->copyOperationsOf_i(*this);
    return copy;
}

std::string InputMsg::getFullName() const {
    std::string name;
    for (const std::string& part : {m_platformPrefix, m_configfilePrefix}) {
        if (!part.empty()) {
            name += part + "_";
        }
    }
    return name + m_name;
}

int InputMsg::addTrigger(TWOpCommand command, const std::string& trigger, Detail detail) {
    // Operations of a message with a command were asked when they came.
    if (m_command != command && (m_command != TWOpCommand::UNSET || !areOperationsCompatible_i(command))) {
        std::fputs("Commands are not compatible!\n", stderr);
        return -1;
    }
    TriggerSet& set = triggerSet_i(detail);
    if (!isTriggerCompatible_i(set, trigger)) {
        return -1;
    }
    m_command = command;
    set.triggers.insert(trigger);
    return 0;
}

bool InputMsg::isTriggerCompatible_i(const TriggerSet& set, const std::string& trigger) const {
    if (set.triggers.empty() || set.triggers.count(trigger) != 0) {
        return true;
    }
    // An exclusive trigger never has company, so looking at one tells of all.
    if (isExclusive(*set.triggers.begin())) {
        logWarning("Trying to add Trigger %s to message %s which already has an \"INIT\" or \"REQUIREMENTS\" "
                   "Trigger; \"INIT\" and \"REQUIREMENTS\" messages cannot be mixed with other messages!\n",
                   trigger.c_str(), m_name.c_str());
        return false;
    }
    if (isExclusive(trigger)) {
        logWarning(
            "Trying to add Trigger %s to message %s which already has other triggers; \"INIT\", \"FINI\" and "
            "\"REQUIREMENTS\" messages CANNOT be mixed with other messages!\n",
            trigger.c_str(), m_name.c_str());
        return false;
    }
    return true;
}

bool InputMsg::areOperationsCompatible_i(TWOpCommand command) const {
    return std::all_of(begin(), end(), [command](const Operation* o) { return o->isValidCommand(command); });
}

void InputMsg::addImplicitTrigger() {
    m_isTriggerImplicit = m_normal.triggers.empty() && addReadTrigger("INIT") == 0;
}

void InputMsg::removeImplicitTrigger() {
    if (m_isTriggerImplicit) {
        m_normal.triggers.clear();
        m_command = TWOpCommand::UNSET;
        m_isTriggerImplicit = false;
    }
}

void InputMsg::addTracepointName(const std::string& name, Detail detail) {
    triggerSet_i(detail).tracepointNames.insert(name);
}

void InputMsg::addNotifierName(const std::string& name, Detail detail) {
    triggerSet_i(detail).notifierNames.insert(name);
}

void InputMsg::useMaxDetail() {
    if (!m_maxDetail.triggers.empty()) {
        m_normal = m_maxDetail;
    }
}

int InputMsg::addOperation(Operation* operation) {
    if (operation == nullptr) {
        logWarning("WARNING: no operation given for message %s!\n", m_name.c_str());
        return -1;
    }
    if (m_command != TWOpCommand::UNSET && !operation->isValidCommand(m_command)) {
        std::fputs("Commands are not compatible!\n", stderr);
        return -1;
    }
    if (m_work != nullptr && !operation->hasCollectorOf(*m_work)) {
        logWarning("Cannot add operation %s to message %s because the collectors are different!\n",
                   operation->getName().c_str(), m_name.c_str());
        return -1;
    }
    take_i(operation);
    return 0;
}

void InputMsg::resetOperations() {
    m_work = nullptr;
    m_ownOperations.clear();
    m_heldWork.clear();
    m_operations.clear();
    m_ownedOperations.clear();
}

Operation* InputMsg::findOwnOperation(std::string_view collectorType) const {
    const auto found =
        std::find_if(m_ownOperations.begin(), m_ownOperations.end(), [&](const Operation* operation) {
            return operation->getCollectorType() == collectorType;
        });
    return found == m_ownOperations.end() ? nullptr : *found;
}

int InputMsg::execute(const std::vector<std::pair<std::string, std::string>>& values) const {
    if (m_operations.empty()) {
        logWarning("WARNING: Message %s has no operations defined!\n", m_name.c_str());
        return -1;
    }
    CollectorPlugin* const collector =
        findCollector(m_operations.front(), "Trying to do immediate read/write of operation ");
    if (collector == nullptr) {
        return -1;
    }
    return m_command == TWOpCommand::WRITE ? collector->doImmediateWrite(this)
                                           : collector->doImmediateRead(this, values);
}

std::unique_ptr<MsgMetadata> InputMsg::createMsgMetadata() const {
    auto record = std::make_unique<MsgMetadata>(
        static_cast<pw_u32_t>(m_pluginId), static_cast<pw_u32_t>(m_metricId), static_cast<pw_u32_t>(m_msgId),
        m_featureName.empty() ? m_configfilePrefix : m_featureName, m_name);
    for (const std::string& group : m_capGroups) {
        record->addCapGroup(group);
    }
    for (const std::string& trigger : m_normal.triggers) {
        record->addTrigger(trigger);
    }
    for (const std::string& name : m_normal.tracepointNames) {
        record->addTracepointName(name);
    }
    OrderedPairs constants;
    for (const bool areOwn : {true, false}) {
        for (const Operation* operation : m_operations) {
            const bool isOwn = operation->getOrgMsgTag() == m_name;
            const auto* const constant = dynamic_cast<const CONSTANTOperation*>(operation);
            if (constant != nullptr && isOwn == areOwn) {
                for (const auto& [key, value] : *constant) {
                    constants.add(key, value);
                }
            } else if (constant == nullptr && areOwn) {
                for (auto& metadata : operation->createAllMetadata()) {
                    record->addMetaValue(std::move(metadata));
                }
            }
        }
    }
    if (!constants.get().empty()) {
        record->addMetaValue(std::make_unique<CONSTANTOperationMetadata>(m_name, constants.get()));
    }
    return record;
}

} // namespace pwr
