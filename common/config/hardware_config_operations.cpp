// The rules of statements that give a message its operations and their keys.

#include <memory>

#include "common/config/collector_types.h"
#include "common/config/hardware_config_grammar.h"
#include "common/config/operation_kinds.h"
#include "common/plugin/logger.h"

namespace pwr {

namespace {

/// Gives the message an operation of its own; null when it cannot have it.
Operation* addOperation(InputMsg& message, std::unique_ptr<Operation> operation) {
    if (operation == nullptr) {
        return nullptr;
    }
    operation->setOrgMsgTag(message.getName());
    if (message.addOperation(operation.get()) != 0) {
        return nullptr;
    }
    return operation.release();
}

} // namespace

int HardwareConfigGrammar::tagSub_i() {
    const std::string_view tag = m_cursor.take();
    if (m_message == nullptr || m_message->getName() != tag) {
        m_message = &m_cap->getOrCreateMessage(tag);
    }
    if (m_cursor.peek() == "MSG") {
        return call_i(RuleId::msgSub);
    }
    if (m_message->isCopied()) {
        warnIfCopied_i();
    }
    if (m_cursor.peek() == "CONSTANT") {
        return call_i(RuleId::constantSub);
    }
    if (call_i(RuleId::hwMechRule) != 0 || call_i(RuleId::hwCatRule) != 0) return -1;
    return call_i(RuleId::directValue);
}

void HardwareConfigGrammar::warnIfCopied_i() const {
    logWarning(
        "WARNING: message %s was copied by a group or a source before this line; the copy stays as it was\n",
        m_message->getFullName().c_str());
}

int HardwareConfigGrammar::constantSub_i() {
    m_cursor.take();
    return call_i(RuleId::constantAny);
}

int HardwareConfigGrammar::constantAny_i() {
    m_operation = m_message->findOwnOperation("");
    if (m_operation == nullptr) {
        m_operation = addOperation(*m_message, std::make_unique<CONSTANTOperation>(m_message->getName()));
    }
    if (m_operation == nullptr) {
        return fail_i("message " + m_message->getName() + " takes no constants");
    }
    return call_i(RuleId::constantAnyValue);
}

int HardwareConfigGrammar::constantAnyValue_i() {
    const std::string_view key = m_cursor.take();
    if (m_operation->addKey(key, m_cursor.take()) != 0) {
        return fail_i("key " + std::string(key) + " is set already");
    }
    return 0;
}

int HardwareConfigGrammar::hwMechRule_i() {
    const std::string_view word = m_cursor.take();
    const std::size_t colon = word.find(':');
    m_category = colon == std::string_view::npos ? std::string_view() : word.substr(colon + 1);
    const std::string_view type = word.substr(0, colon);
    m_operation = type.empty() ? nullptr : m_message->findOwnOperation(type);
    if (m_operation == nullptr) {
        const std::string typeWord(type);
        if (!m_collectors.isKnown(typeWord)) {
            logError("ERROR: unknown collector type %s\n", typeWord.c_str());
            return fail_i(R"(field 4 must be "MSG", "CONSTANT" or a collector type: )" + m_collectors.list());
        }
        m_operation = addOperation(*m_message, OperationKinds::make(m_message->getName(), typeWord));
    }
    if (m_operation == nullptr) {
        const std::string key(m_cursor.peek());
        logError("ERROR creating packet with key = %s\n", key.c_str());
        return fail_i("message " + m_message->getName() + " takes no operation of this type");
    }
    if (colon != std::string_view::npos && m_category.empty()) {
        return fail_i("a hardware category must follow \":\"");
    }
    return 0;
}

int HardwareConfigGrammar::hwCatRule_i() {
    if (!m_category.empty() && m_operation->addCategory(std::string(m_category)) != 0) {
        logError("ERROR: unknown hardware category %s\n", std::string(m_category).c_str());
        return fail_i("a category of the collector type expected behind \":\"");
    }
    return 0;
}

int HardwareConfigGrammar::directValue_i() {
    const std::string_view key = m_cursor.take();
    const std::string_view value = m_cursor.take();
    if (m_operation->addKey(key, value) != 0) {
        logWarning("WARNING: Couldn't add key %s, value %s to operation %s\n", std::string(key).c_str(),
                   std::string(value).c_str(), m_operation->getName().c_str());
        return fail_i("key " + std::string(key) + " is set already or not one of the operation's");
    }
    return 0;
}

} // namespace pwr
