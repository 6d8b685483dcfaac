#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "common/config/output_config_entries.h"
#include "common/config/rule_runner.h"
#include "common/config/statement.h"

namespace pwr {

/// The grammar of the output configuration: turns statements into entries.
/// Both kinds of order statement are strict in every field, because a misspelt one would otherwise become
/// the entry of a table that nobody has.
class OutputConfigGrammar {
public:
    explicit OutputConfigGrammar(OutputConfigEntries& entries) : m_entries(entries) {}

    /// Applies the grammar; 0, or -1 with what is wrong in `problem`.
    int apply(const Statement& statement, std::string& problem);

private:
    enum class RuleId : std::size_t {
        STATEMENT,
        FEATURE_ORDER,
        FEATURE_ORDER_VALUE,
        METRIC,
        METRIC_ORDER,
        METRIC_ORDER_VALUE,
        TABLE_INFO,
        TABLE_INFO_VALUE,
        COUNT
    };
    using Rules = RuleTable<OutputConfigGrammar, RuleId, static_cast<std::size_t>(RuleId::COUNT)>;
    static const Rules& rules_i();

    int statementRule_i();
    int featureOrderRule_i();
    int featureOrderValue_i();
    int metricRule_i();
    int metricOrderRule_i();
    int metricOrderValue_i();
    int tableInfoRule_i();
    int tableInfoValue_i();

    int call_i(RuleId rule);
    int expect_i(std::string_view word);

    OutputConfigEntries& m_entries;
    TokenCursor m_cursor;
    std::string m_problem;
    // What the rules of the statement under work have read so far.
    std::string_view m_feature;
    std::string_view m_container;
    std::string_view m_table;
    std::string_view m_key;
};

} // namespace pwr
