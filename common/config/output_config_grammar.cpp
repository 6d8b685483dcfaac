#include "common/config/output_config_grammar.h"

#include "common/plugin/logger.h"

namespace pwr {

namespace {

constexpr const char* TRACE_TAG = "output-config-parser";

void addListItems(OrderedNames& names, std::string_view list) {
    ListItems items(list);
    for (std::string_view item; items.next(item);) {
        names.add(item);
    }
}

void warnOfDuplicate(std::string_view key, std::string_view table, std::string_view container) {
    logWarning(
        "WARNING: Config table info (%s) entry already present for metric table %s for metric container "
        "%s\n",
        std::string(key).c_str(), std::string(table).c_str(), std::string(container).c_str());
}

} // namespace

const OutputConfigGrammar::Rules& OutputConfigGrammar::rules_i() {
    using Self = OutputConfigGrammar;
    static constexpr Rules RULES(TRACE_TAG, {{
                                                {"outputConfigRule", &Self::statementRule_i},
                                                {"featureOrderRule", &Self::featureOrderRule_i},
                                                {"featureOrderValue", &Self::featureOrderValue_i},
                                                {"metricRule", &Self::metricRule_i},
                                                {"metricOrderRule", &Self::metricOrderRule_i},
                                                {"metricOrderValue", &Self::metricOrderValue_i},
                                                {"tableInfoRule", &Self::tableInfoRule_i},
                                                {"tableInfoValue", &Self::tableInfoValue_i},
                                            }});
    return RULES;
}

int OutputConfigGrammar::apply(const Statement& statement, std::string& problem) {
    m_cursor.start(statement);
    m_problem.clear();
    const int result = rules_i().start(*this, RuleId::STATEMENT);
    if (result != 0) {
        problem = m_problem;
    }
    return result;
}

int OutputConfigGrammar::call_i(RuleId rule) {
    return rules_i().call(*this, rule);
}

int OutputConfigGrammar::expect_i(std::string_view word) {
    return m_cursor.expect(word, m_problem);
}

int OutputConfigGrammar::statementRule_i() {
    return call_i(m_cursor.peek(1) == "OUTPUT-ORDER" ? RuleId::FEATURE_ORDER : RuleId::METRIC);
}

int OutputConfigGrammar::featureOrderRule_i() {
    for (const std::string_view word :
         {OutputConfigEntries::ANY_FEATURE, std::string_view("OUTPUT-ORDER"), std::string_view("TAG"),
          std::string_view("FEATURE"), std::string_view("ORDER")}) {
        if (expect_i(word) != 0) return -1;
    }
    return call_i(RuleId::FEATURE_ORDER_VALUE);
}

int OutputConfigGrammar::featureOrderValue_i() {
    addListItems(m_entries.featureOrder, m_cursor.take());
    return 0;
}

int OutputConfigGrammar::metricRule_i() {
    return call_i(m_cursor.peek(2) == "TAG" ? RuleId::METRIC_ORDER : RuleId::TABLE_INFO);
}

int OutputConfigGrammar::metricOrderRule_i() {
    if (expect_i(OutputConfigEntries::ANY_FEATURE) != 0) return -1;
    m_feature = m_cursor.take();
    if (expect_i("TAG") != 0 || expect_i("TABLE") != 0 || expect_i("ORDER") != 0) return -1;
    return call_i(RuleId::METRIC_ORDER_VALUE);
}

int OutputConfigGrammar::metricOrderValue_i() {
    auto order = m_entries.containerOrders.find(m_feature);
    if (order == m_entries.containerOrders.end()) {
        order = m_entries.containerOrders.emplace(m_feature, OrderedNames()).first;
    }
    addListItems(order->second, m_cursor.take());
    return 0;
}

int OutputConfigGrammar::tableInfoRule_i() {
    m_feature = m_cursor.take();
    m_container = m_cursor.take();
    m_table = m_cursor.take();
    m_key = m_cursor.take();
    m_cursor.take(); // the sub-key says nothing about the entry
    return call_i(RuleId::TABLE_INFO_VALUE);
}

int OutputConfigGrammar::tableInfoValue_i() {
    // Both tags and the "_" between them stand side by side in the line, so the prefix need not be put together.
    const std::string_view prefix(m_feature.data(), m_feature.size() + 1 + m_container.size());
    if (!m_entries.addTableEntry(m_feature, prefix, m_table, m_key, m_cursor.take())) {
        warnOfDuplicate(m_key, m_table, m_container);
    }
    return 0;
}

} // namespace pwr
