#include "common/config/hardware_config_grammar.h"

#include <algorithm>
#include <array>

#include "common/config/config_trace.h"
#include "common/plugin/logger.h"

namespace pwr {

const HardwareConfigGrammar::Rules& HardwareConfigGrammar::rules_i() {
    using Self = HardwareConfigGrammar;
#define HARDWARE_CONFIG_RULE_ROW(name) {#name, &Self::name##_i},
    static constexpr Rules RULES(c_configTraceTag, {{HARDWARE_CONFIG_RULES(HARDWARE_CONFIG_RULE_ROW)}});
#undef HARDWARE_CONFIG_RULE_ROW
    return RULES;
}

int HardwareConfigGrammar::apply(const Statement& statement, std::string& problem) {
    m_cursor.start(statement);
    m_problem.clear();
    m_failedRule = nullptr;
    try {
        const int result = rules_i().start(*this, RuleId::platformRule);
        if (result != 0) {
            problem = describeFailure_i(m_failedRule);
        }
        return result;
    } catch (...) {
        problem = describeFailure_i(m_rule);
        throw;
    }
}

std::string HardwareConfigGrammar::describeFailure_i(const char* rule) const {
    std::string text = m_problem;
    if (rule != nullptr) {
        text += (text.empty() ? "(rule " : " (rule ") + std::string(rule) + ")";
    }
    return text;
}

int HardwareConfigGrammar::call_i(RuleId rule) {
    m_rule = rules_i().getName(rule);
    const int result = rules_i().call(*this, rule);
    if (result != 0 && m_failedRule == nullptr) {
        m_failedRule = rules_i().getName(rule);
    }
    return result;
}

int HardwareConfigGrammar::callBranch_i(std::span<const Branch> branches) {
    const std::string_view token = m_cursor.peek();
    const auto branch = std::find_if(branches.begin(), branches.end(),
                                     [token](const Branch& candidate) { return candidate.word == token; });
    if (branch != branches.end()) {
        return call_i(branch->rule);
    }
    std::string problem = "field " + std::to_string(m_cursor.index() + 1) + " must be one of";
    for (const Branch& candidate : branches) {
        problem += (&candidate == branches.data() ? " \"" : ", \"") + std::string(candidate.word) + "\"";
    }
    return fail_i(std::move(problem));
}

int HardwareConfigGrammar::expect_i(std::string_view word) {
    return m_cursor.expect(word, m_problem);
}

int HardwareConfigGrammar::fail_i(std::string problem) {
    m_problem = std::move(problem);
    return -1;
}

int HardwareConfigGrammar::platformRule_i() {
    if (call_i(RuleId::platformHead) != 0) return -1;
    return call_i(RuleId::platformSub);
}

int HardwareConfigGrammar::platformHead_i() {
    const std::string_view name = m_cursor.take();
    if (m_platform != nullptr && m_platform->getName() == name) {
        return 0;
    }
    if (name.starts_with('-') || name.ends_with('-') || name.find("--") != std::string_view::npos) {
        return fail_i(
            "a part of the platform name is empty: \"-\" joins parts, and what stands before the last "
            "one names the parent");
    }
    if (trimBlanks(name) != name || name.find(',') != std::string_view::npos) {
        return fail_i("a platform name with blanks around it or a comma cannot be asked for");
    }
    m_platform = &m_parser.getOrCreatePlatform(std::string(name), Parser::getParentName(name));
    m_cap = nullptr;
    m_message = nullptr;
    return 0;
}

int HardwareConfigGrammar::platformSub_i() {
    return call_i(m_cursor.peek() == "MODEL" ? RuleId::modelRule : RuleId::metricRule);
}

int HardwareConfigGrammar::metricRule_i() {
    const std::string_view prefix = m_cursor.take();
    if (m_cap == nullptr || m_cap->prefix != prefix) {
        m_cap = &m_platform->getOrCreateCap(prefix);
        m_message = nullptr;
        logTrace(c_configTraceTag, "OK, got or created cap with config file prefix = %s\n",
                 m_cap->prefix.c_str());
    }
    if (m_cursor.peek() == "CAPABILITY") {
        return call_i(RuleId::capRule);
    }
    return call_i(m_cursor.peek() == "INHERIT" ? RuleId::inheritRule : RuleId::tagSub);
}

} // namespace pwr
