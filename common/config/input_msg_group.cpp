#include <algorithm>

#include "common/config/input_msg.h"
#include "common/plugin/logger.h"

namespace pwr {

namespace {

int refuse(const InputMsg& group, const InputMsg& member) {
    logWarning("WARNING: couldn't append message %s to message %s!\n", member.getName().c_str(),
               group.getName().c_str());
    return -1;
}

/// What tells the operations of a capability's statements apart.
std::string workOf(const Operation& operation) {
    return operation.getOrgMsgTag() + "_" + operation.getCollectorType();
}

} // namespace

void InputMsg::take_i(Operation* operation) {
    m_ownedOperations.emplace_back(operation);
    m_operations.push_back(operation);
    if (operation->getOrgMsgTag() == m_name) {
        m_ownOperations.push_back(operation);
    }
    if (m_work == nullptr && !operation->getCollectorType().empty()) {
        m_work = operation;
    }
    if (!m_heldWork.empty()) {
        m_heldWork.insert(workOf(*operation));
    }
}

void InputMsg::copyOperationsOf_i(const InputMsg& other) {
    for (const Operation* operation : other.m_operations) {
        copyOperation_i(*operation);
    }
}

void InputMsg::copyOperation_i(const Operation& operation) {
    if (m_command == TWOpCommand::UNSET || operation.isValidCommand(m_command)) {
        take_i(operation.clone());
    }
}

bool InputMsg::hasCollectorOf_i(const InputMsg& other) const {
    return m_work == nullptr || other.m_work == nullptr || m_work->hasCollectorOf(*other.m_work);
}

bool InputMsg::areReadTriggersCompatible_i(const InputMsg& member, Detail detail) const {
    const TriggerSet& own = getTriggerSet(detail);
    const TriggerSet& others = member.getTriggerSet(detail);
    if (own == others) {
        return true;
    }
    // A group takes its first member's triggers of both levels together, and later none of either.
    return m_normal.triggers.empty() && m_maxDetail.triggers.empty();
}

int InputMsg::append(InputMsg& member) {
    if (this == &member) {
        logWarning("told to add a group %s to itself?!\n", m_name.c_str());
        return -1;
    }
    if (m_isGroupMember) {
        // What its own group has copied would lack the newcomer, which nobody would carry out then.
        logWarning("WARNING: message %s is part of a group itself and takes no message any more!\n",
                   m_name.c_str());
        return refuse(*this, member);
    }
    if (!hasCollectorOf_i(member)) {
        logWarning(
            "ERROR appending messages %s and %s; CANNOT append messages if collectors are different!\n",
            m_name.c_str(), member.m_name.c_str());
        return refuse(*this, member);
    }
    const bool isUntriggered = m_normal.triggers.empty() && m_maxDetail.triggers.empty();
    const bool isSameWork =
        (m_command == member.m_command || isUntriggered) &&
        (m_cpuString == member.m_cpuString || (m_cpuString.empty() && m_operations.empty()));
    const bool canTakeCommand = !isUntriggered || member.m_command == TWOpCommand::UNSET ||
                                areOperationsCompatible_i(member.m_command);
    if (!isSameWork || !canTakeCommand || !areReadTriggersCompatible_i(member, Detail::NORMAL)) {
        logWarning("Msg %s and msg %s have incompatible read capabilities!\n", m_name.c_str(),
                   member.m_name.c_str());
        return refuse(*this, member);
    }
    if (!areReadTriggersCompatible_i(member, Detail::MAX)) {
        logWarning("Msg %s and msg %s have incompatible max-detail read capabilities!\n", m_name.c_str(),
                   member.m_name.c_str());
        return refuse(*this, member);
    }
    if (isUntriggered) {
        m_command = member.m_command;
        m_normal = member.m_normal;
        m_maxDetail = member.m_maxDetail;
    }
    m_cpuString = member.m_cpuString;
    if (m_heldWork.empty()) {
        m_heldWork.insert(""); // from now on it is kept
        std::for_each(begin(), end(), [this](const Operation* own) { m_heldWork.insert(workOf(*own)); });
    }
    for (const Operation* operation : member) {
        // Two members may hold copies of the same work, which is carried out once.
        if (operation->getOrgMsgTag().empty() || m_heldWork.count(workOf(*operation)) == 0) {
            copyOperation_i(*operation);
        }
    }
    member.m_isGroupMember = true;
    member.m_isCopied = true;
    return 0;
}

int InputMsg::sourceFrom(InputMsg& source) {
    if (this == &source) {
        logWarning("WARNING: CANNOT self-source for message %s!\n", m_name.c_str());
        return -1;
    }
    if (source.m_isGroupMember) {
        logWarning("WARNING: message %s cannot be sourced since it is part of a group!\n",
                   source.m_name.c_str());
        return -1;
    }
    const bool hasSupported = std::any_of(source.begin(), source.end(), [this](const Operation* operation) {
        return !operation->getCollectorType().empty() &&
               (m_command == TWOpCommand::UNSET || operation->isValidCommand(m_command));
    });
    if (!hasSupported) {
        logWarning(
            "WARNING: message %s cannot be sourced since it doesn't contain any supported operations!\n",
            source.m_name.c_str());
        return -1;
    }
    if (!m_operations.empty()) {
        logWarning("WARNING: CANNOT source to non-empty message %s!\n", m_name.c_str());
        return -1;
    }
    copyOperationsOf_i(source);
    source.m_isCopied = true;
    return 0;
}

} // namespace pwr
