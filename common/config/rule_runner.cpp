#include "common/config/rule_runner.h"

#include "common/plugin/logger.h"

namespace pwr {

void reportFailedRule(const char* traceTag, const char* ruleName) {
    if (isLogEnabled(PWLogLevel::WARNING)) {
        logWarning("WARNING: ERROR calling function \"%s\"\n", ruleName);
    } else {
        logTrace(traceTag, "WARNING: ERROR calling function \"%s\"\n", ruleName);
    }
}

} // namespace pwr
