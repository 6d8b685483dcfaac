#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "common/config/statement.h"
#include "common/export.h"

namespace pwr {

/// The statement that the rules of a grammar work on, and how far they have come in it.
/// A rule looks at the current token and takes it when it is the rule's own.
class TokenCursor {
public:
    void start(const Statement& statement) noexcept {
        m_statement = &statement;
        m_index = 0;
    }
    /// The token `ahead` places behind the current one, empty beyond the end.
    [[nodiscard]] std::string_view peek(std::size_t ahead = 0) const noexcept {
        const std::size_t index = m_index + ahead;
        return m_statement != nullptr && index < Statement::FIELD_COUNT ? m_statement->fields[index]
                                                                        : std::string_view();
    }
    std::string_view take() noexcept {
        const std::string_view token = peek();
        ++m_index;
        return token;
    }
    /// From 0 (F1) to Statement::VALUE.
    [[nodiscard]] std::size_t index() const noexcept { return m_index; }
    /// Takes the current token when it is exactly the word; otherwise says so in `problem` and returns -1.
    int expect(std::string_view word, std::string& problem) {
        if (peek() != word) {
            problem = "field " + std::to_string(m_index + 1) + " must be \"" + std::string(word) + "\"";
            return -1;
        }
        ++m_index;
        return 0;
    }

private:
    const Statement* m_statement = nullptr;
    std::size_t m_index = 0;
};

/// One rule of a grammar: its name, which stands in the diagnostics, and the function that applies it, which
/// returns 0 or, when the statement breaks the rule, something else.
template <class Grammar> struct Rule {
    const char* name;
    int (Grammar::*apply)();
};

/// Says that a sub-rule failed: a warning, or a trace under the grammar's tag when warnings are off.
KRCOMMON_API void reportFailedRule(const char* traceTag, const char* ruleName);

/// The rules of one grammar, in one table that is indexed by the grammar's own enumeration of rules.
/// A rule calls another through call(), so that a failure names the chain of rules from the innermost outwards.
template <class Grammar, class RuleId, std::size_t COUNT> class RuleTable {
public:
    constexpr RuleTable(const char* traceTag, const std::array<Rule<Grammar>, COUNT>& rules)
        : m_traceTag(traceTag), m_rules(rules) {}

    /// Applies the outermost rule: nobody called it, so nobody reports its name.
    int start(Grammar& grammar, RuleId rule) const {
        return (grammar.*m_rules[static_cast<std::size_t>(rule)].apply)();
    }
    /// Applies a rule on behalf of another one.
    int call(Grammar& grammar, RuleId rule) const {
        const int result = start(grammar, rule);
        if (result != 0) {
            reportFailedRule(m_traceTag, m_rules[static_cast<std::size_t>(rule)].name);
        }
        return result;
    }

    const char* getName(RuleId rule) const { return m_rules[static_cast<std::size_t>(rule)].name; }

private:
    const char* m_traceTag;
    std::array<Rule<Grammar>, COUNT> m_rules;
};

} // namespace pwr
