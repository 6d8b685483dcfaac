// The rules of statements about a capability itself.

#include <array>

#include "common/config/hardware_config_grammar.h"
#include "common/plugin/logger.h"

namespace pwr {

int HardwareConfigGrammar::capRule_i() {
    m_cursor.take();
    return call_i(RuleId::capSub);
}

int HardwareConfigGrammar::capSub_i() {
    static constexpr std::array ATTRIBUTES = {
        Branch{"HELP-STRING", RuleId::capSubHelp},
        Branch{"COMMAND-LINE", RuleId::capSubCmdline},
        Branch{"HIDDEN", RuleId::capSubHidden},
        Branch{"GROUP", RuleId::capSubGroup},
    };
    return callBranch_i(ATTRIBUTES);
}

int HardwareConfigGrammar::capValue_i() {
    const std::string_view word = m_cursor.peek();
    if (expect_i("VALUE") != 0) {
        logWarning("WARNING: invalid token %s; expected \"VALUE\"\n", std::string(word).c_str());
        return -1;
    }
    return 0;
}

int HardwareConfigGrammar::capSubHelp_i() {
    m_cursor.take();
    if (call_i(RuleId::capValue) != 0) return -1;
    m_cap->description = std::string(m_cursor.take());
    return 0;
}

int HardwareConfigGrammar::capSubCmdline_i() {
    m_cursor.take();
    if (call_i(RuleId::capValue) != 0) return -1;
    const std::string_view name = trimBlanks(m_cursor.take());
    if (name.empty()) {
        return fail_i("a name expected");
    }
    m_cap->commandLine = std::string(name);
    return 0;
}

int HardwareConfigGrammar::capSubHidden_i() {
    m_cursor.take();
    if (call_i(RuleId::capValue) != 0) return -1;
    const std::string_view value = m_cursor.take();
    if (value != "TRUE" && value != "FALSE") {
        logWarning("WARNING: invalid value %s passed to \"HIDDEN\" attribute; must be one of \"TRUE\" or "
                   "\"FALSE\"\n",
                   std::string(value).c_str());
        return fail_i(R"("TRUE" or "FALSE" expected)");
    }
    m_cap->isHidden = value == "TRUE";
    return 0;
}

int HardwareConfigGrammar::capSubGroup_i() {
    m_cursor.take();
    if (call_i(RuleId::capValue) != 0) return -1;
    ListItems items(m_cursor.take());
    std::string_view group;
    if (!items.next(group)) {
        return fail_i("the name of a group expected");
    }
    do {
        m_cap->groups.emplace(group);
    } while (items.next(group));
    return 0;
}

int HardwareConfigGrammar::inheritRule_i() {
    m_cursor.take();
    return call_i(RuleId::inheritSub);
}

int HardwareConfigGrammar::inheritSub_i() {
    static constexpr std::array ATTRIBUTES = {Branch{"MODE", RuleId::inheritMode}};
    return callBranch_i(ATTRIBUTES);
}

int HardwareConfigGrammar::inheritMode_i() {
    m_cursor.take();
    if (expect_i("VALUE") != 0) return -1;
    return call_i(RuleId::inheritValue);
}

int HardwareConfigGrammar::inheritValue_i() {
    const std::string_view value = m_cursor.take();
    if (value != "OVERRIDE" && value != "EXTEND") {
        logError("ERROR: Invalid \"inherit\" value %s -- MUST be one of \"OVERRIDE\" or \"EXTEND\"\n",
                 std::string(value).c_str());
        return fail_i(R"("OVERRIDE" or "EXTEND" expected)");
    }
    m_cap->mode = value == "EXTEND" ? InheritMode::EXTEND : InheritMode::OVERRIDE;
    return 0;
}

} // namespace pwr
