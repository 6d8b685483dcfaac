// The rules of statements about a message: its attributes and its triggers.

#include <algorithm>
#include <array>

#include "common/config/config_trace.h"
#include "common/config/hardware_config_grammar.h"
#include "common/plugin/logger.h"
#include "common/pw_utils.h"

namespace pwr {

namespace {

constexpr std::array<std::string_view, 6> TRIGGER_WORDS = {"INIT", "BEGIN", "POLL",
                                                           "END",  "FINI",  "REQUIREMENTS"};
constexpr std::string_view TRACEPOINT = "TRACEPOINT";
constexpr std::string_view NOTIFIER = "NOTIFIER";

// Sources of large groups multiply: few lines could ask for more than any memory holds.
constexpr std::size_t MAX_COPIED = 250000;

bool isTriggerWord(std::string_view word) {
    return std::find(TRIGGER_WORDS.begin(), TRIGGER_WORDS.end(), word) != TRIGGER_WORDS.end();
}

/// Whether the item opens a list of names: the word, "=", and the first name behind it.
bool takeListHead(std::string_view word, std::string_view& item) {
    if (!item.starts_with(word) || item.size() == word.size() || item[word.size()] != '=') {
        return false;
    }
    item = trimBlanks(item.substr(word.size() + 1));
    return true;
}

} // namespace

int HardwareConfigGrammar::msgSub_i() {
    m_cursor.take();
    static constexpr std::array ATTRIBUTES = {
        Branch{"GROUP", RuleId::msgGroup},
        Branch{"ID", RuleId::msgID},
        Branch{"SOURCE", RuleId::msgSource},
        Branch{"READ-WHEN", RuleId::msgReadWhen},
        Branch{"WRITE-WHEN", RuleId::msgWriteWhen},
        Branch{"READ-WHEN-MAX-DETAIL", RuleId::msgReadWhenMaxDetail},
        Branch{"WRITE-WHEN-MAX-DETAIL", RuleId::msgWriteWhenMaxDetail},
        Branch{"READ-WHICH-CPU", RuleId::msgReadWhere},
        Branch{"WRITE-WHICH-CPU", RuleId::msgWriteWhere},
    };
    return callBranch_i(ATTRIBUTES);
}

int HardwareConfigGrammar::msgGroup_i() {
    m_cursor.take();
    return call_i(RuleId::msgGroupList);
}

int HardwareConfigGrammar::msgGroupList_i() {
    ListItems items(m_cursor.take());
    std::string_view name;
    if (!items.next(name)) {
        return fail_i("names of messages of the same capability expected");
    }
    do {
        InputMsg* const member = m_cap->messages.find(name);
        if (member == nullptr) {
            logWarning("WARNING: couldn't get or create a message with name %s!\n",
                       std::string(name).c_str());
            return fail_i("no message " + std::string(name) + " stands before this line");
        }
        if (payForCopy_i(*member) != 0) return -1;
        if (m_message->append(*member) != 0) {
            return fail_i("message " + std::string(name) + " cannot be a part of " + m_message->getName());
        }
    } while (items.next(name));
    return 0;
}

int HardwareConfigGrammar::msgID_i() {
    m_cursor.take();
    return call_i(RuleId::msgIDValue);
}

int HardwareConfigGrammar::msgIDValue_i() {
    int id = 0;
    if (extract_number_i(std::string(trimBlanks(m_cursor.take())), id) != 0) {
        return fail_i("a whole number expected");
    }
    m_message->setMsgID(id);
    return 0;
}

int HardwareConfigGrammar::msgSource_i() {
    m_cursor.take();
    return call_i(RuleId::msgSourceRule);
}

int HardwareConfigGrammar::msgSourceRule_i() {
    const std::string name(trimBlanks(m_cursor.take()));
    InputMsg* const source = m_cap->messages.find(name);
    if (source == nullptr) {
        logWarning("WARNING: CANNOT source from non-existant msg %s!\n", name.c_str());
        return fail_i("no message " + name + " stands before this line");
    }
    if (payForCopy_i(*source) != 0) return -1;
    if (m_message->sourceFrom(*source) != 0) {
        return fail_i("message " + m_message->getName() + " cannot take the operations of " + name);
    }
    return 0;
}

/// Once the files have asked for too much, nothing is copied any more.
int HardwareConfigGrammar::payForCopy_i(const InputMsg& message) {
    if (m_copied <= MAX_COPIED) {
        for (const Operation* operation : message) {
            m_copied += 1 + operation->getKeyCount();
        }
    }
    return m_copied <= MAX_COPIED ? 0
                                  : fail_i("groups and sources copy more than " + std::to_string(MAX_COPIED) +
                                           " keys and operations in all");
}

int HardwareConfigGrammar::msgReadWhere_i() {
    m_cursor.take();
    return call_i(RuleId::readWriteCPU);
}

int HardwareConfigGrammar::msgWriteWhere_i() {
    m_cursor.take();
    return call_i(RuleId::readWriteCPU);
}

int HardwareConfigGrammar::readWriteCPU_i() {
    m_message->setCPUString(std::string(m_cursor.take()));
    return 0;
}

int HardwareConfigGrammar::msgReadWhen_i() {
    return when_i(TWOpCommand::READ, InputMsg::Detail::NORMAL);
}

int HardwareConfigGrammar::msgWriteWhen_i() {
    return when_i(TWOpCommand::WRITE, InputMsg::Detail::NORMAL);
}

int HardwareConfigGrammar::msgReadWhenMaxDetail_i() {
    return when_i(TWOpCommand::READ, InputMsg::Detail::MAX);
}

int HardwareConfigGrammar::msgWriteWhenMaxDetail_i() {
    return when_i(TWOpCommand::WRITE, InputMsg::Detail::MAX);
}

int HardwareConfigGrammar::when_i(TWOpCommand command, InputMsg::Detail detail) {
    m_cursor.take();
    m_command = command;
    m_detail = detail;
    if (m_message->isGroupMember()) {
        warnIfCopied_i();
    }
    return call_i(RuleId::triggers);
}

int HardwareConfigGrammar::triggers_i() {
    ListItems items(m_cursor.take());
    if (!items.next(m_item)) {
        return fail_i("a trigger expected");
    }
    m_nameRule = RuleId::COUNT;
    do {
        if (call_i(RuleId::trigger) != 0) return -1;
    } while (items.next(m_item));
    return closeNames_i();
}

int HardwareConfigGrammar::trigger_i() {
    if (takeListHead(TRACEPOINT, m_item)) {
        return openNames_i(TRACEPOINT, RuleId::traceTrigger);
    }
    if (takeListHead(NOTIFIER, m_item)) {
        return openNames_i(NOTIFIER, RuleId::notifierTrigger);
    }
    if (m_item == TRACEPOINT || m_item == NOTIFIER) {
        return fail_i("\"" + std::string(m_item) + "\" needs \"=\" and names");
    }
    if (isTriggerWord(m_item)) {
        return closeNames_i() != 0 ? -1 : addTrigger_i(m_item);
    }
    if (m_nameRule != RuleId::COUNT) {
        return call_i(m_nameRule);
    }
    return fail_i("\"" + std::string(m_item) +
                  "\" is no trigger; INIT, BEGIN, POLL, END, FINI, REQUIREMENTS, TRACEPOINT=NAME or "
                  "NOTIFIER=NAME expected");
}

/// The names go to the message only when it takes the trigger itself.
int HardwareConfigGrammar::openNames_i(std::string_view word, RuleId nameRule) {
    if (closeNames_i() != 0 || addTrigger_i(word) != 0) return -1;
    m_nameRule = nameRule;
    m_hasNames = false;
    return m_item.empty() ? 0 : call_i(nameRule);
}

int HardwareConfigGrammar::closeNames_i() {
    const bool isEmptyList = m_nameRule != RuleId::COUNT && !m_hasNames;
    m_nameRule = RuleId::COUNT;
    return isEmptyList ? fail_i("a list of names is empty") : 0;
}

int HardwareConfigGrammar::addTrigger_i(std::string_view word) {
    if (m_message->addTrigger(m_command, std::string(word), m_detail) != 0) {
        return fail_i("message " + m_message->getName() + " cannot have the trigger " + std::string(word) +
                      " as well");
    }
    return 0;
}

int HardwareConfigGrammar::traceTrigger_i() {
    const std::string name(m_item);
    logTrace(c_configTraceTag, "OK, adding tracepoint name = %s to msg %s\n", name.c_str(),
             m_message->getName().c_str());
    m_message->addTracepointName(name, m_detail);
    m_hasNames = true;
    return 0;
}

int HardwareConfigGrammar::notifierTrigger_i() {
    const std::string name(m_item);
    logTrace(c_configTraceTag, "OK, adding notifier name = %s to msg %s\n", name.c_str(),
             m_message->getName().c_str());
    m_message->addNotifierName(name, m_detail);
    m_hasNames = true;
    return 0;
}

} // namespace pwr
