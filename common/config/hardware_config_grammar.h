#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "common/config/input_msg.h"
#include "common/config/parser.h"
#include "common/config/rule_runner.h"
#include "common/config/statement.h"

namespace pwr {

class CollectorTypes;

/// All rules, by the names that stand in diagnostics. A rule NAME is the function NAME_i().
// clang-format off
#define HARDWARE_CONFIG_RULES(RULE)                                                                          \
    RULE(platformRule) RULE(platformHead) RULE(platformSub)                                                  \
    RULE(modelRule) RULE(modelFMSRule) RULE(fmsValues) RULE(fmsValue) RULE(modelPCIRule) RULE(pciValue)      \
    RULE(modelTAFRule) RULE(TAFValue) RULE(modelTAFDeprecatedGUIDsRule) RULE(TAFDeprecatedGUIDs)             \
    RULE(modelOtherRule) RULE(modelSpec) RULE(modelValue) RULE(modelRange) RULE(modelRangeSub)               \
    RULE(metricRule) RULE(capRule) RULE(capSub) RULE(capSubHelp) RULE(capSubCmdline) RULE(capSubHidden)      \
    RULE(capSubGroup) RULE(capValue) RULE(inheritRule) RULE(inheritSub) RULE(inheritMode) RULE(inheritValue) \
    RULE(tagSub) RULE(msgSub) RULE(msgGroup) RULE(msgGroupList) RULE(msgID) RULE(msgIDValue) RULE(msgSource) \
    RULE(msgSourceRule) RULE(msgReadWhen) RULE(msgWriteWhen) RULE(msgReadWhenMaxDetail)                      \
    RULE(msgWriteWhenMaxDetail) RULE(msgReadWhere) RULE(msgWriteWhere) RULE(readWriteCPU)                    \
    RULE(triggers) RULE(trigger) RULE(traceTrigger) RULE(notifierTrigger)                                    \
    RULE(constantSub) RULE(constantAny) RULE(constantAnyValue) RULE(hwMechRule) RULE(hwCatRule) RULE(directValue)
// clang-format on

/// The grammar of the hardware description: turns statements into platforms and what belongs to them.
/// What a statement names stays current, because the next statement mostly names the same again.
class HardwareConfigGrammar {
public:
    HardwareConfigGrammar(Parser& parser, const CollectorTypes& collectors)
        : m_parser(parser), m_collectors(collectors) {}

    /// Applies the grammar; 0, or -1 with what is wrong, and in which rule, in `problem`. A model signature that
    /// cannot be read is thrown.
    int apply(const Statement& statement, std::string& problem);

private:
#define HARDWARE_CONFIG_RULE_ID(name) name,
    enum class RuleId : std::size_t { HARDWARE_CONFIG_RULES(HARDWARE_CONFIG_RULE_ID) COUNT };
#undef HARDWARE_CONFIG_RULE_ID
#define HARDWARE_CONFIG_RULE_FUNCTION(name) int name##_i();
    HARDWARE_CONFIG_RULES(HARDWARE_CONFIG_RULE_FUNCTION)
#undef HARDWARE_CONFIG_RULE_FUNCTION

    using Rules = RuleTable<HardwareConfigGrammar, RuleId, static_cast<std::size_t>(RuleId::COUNT)>;
    static const Rules& rules_i();

    /// A keyword and the rule that goes on behind it.
    struct Branch {
        std::string_view word;
        RuleId rule;
    };

    int call_i(RuleId rule);
    /// Goes on with the rule of the current token's branch; the rule takes the token.
    int callBranch_i(std::span<const Branch> branches);
    int expect_i(std::string_view word);
    int fail_i(std::string problem);
    std::string describeFailure_i(const char* rule) const;

    int readGUIDs_i(std::vector<pw_u32_t>& guids);
    int when_i(TWOpCommand command, InputMsg::Detail detail);
    int openNames_i(std::string_view word, RuleId nameRule);
    int closeNames_i();
    int addTrigger_i(std::string_view word);
    void warnIfCopied_i() const;
    int payForCopy_i(const InputMsg& message);

    Parser& m_parser;
    const CollectorTypes& m_collectors;
    TokenCursor m_cursor;
    std::string m_problem;
    const char* m_rule = "";            ///< the one entered last
    const char* m_failedRule = nullptr; ///< the innermost one that failed
    Platform* m_platform = nullptr;
    DeclaredCap* m_cap = nullptr;
    InputMsg* m_message = nullptr;
    Operation* m_operation = nullptr;
    std::string_view m_category;
    std::size_t m_copied = 0; ///< operations and their keys, by all groups and sources so far
    // The value of a WHEN attribute, item by item.
    std::string_view m_item;
    TWOpCommand m_command = TWOpCommand::UNSET;
    InputMsg::Detail m_detail = InputMsg::Detail::NORMAL;
    RuleId m_nameRule = RuleId::COUNT; ///< takes the names of the list that is open
    bool m_hasNames = false;
};

} // namespace pwr
