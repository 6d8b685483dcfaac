#include "common/config/operation_dispatch.h"

#include "common/config/tw_configfile_parser.h"
#include "common/plugin/collector_plugin.h"
#include "common/plugin/logger.h"

namespace pwr {

CollectorPlugin* findCollector(const Operation* operation, const char* what) {
    const char* const name = operation == nullptr ? "" : operation->getName().c_str();
    if (operation == nullptr || operation->getCollectorType().empty()) {
        logError("ERROR: %s%s without a valid packet?!\n", what, name);
        return nullptr;
    }
    const TWConfigFileParser* const parser = TWConfigFileParser::current();
    if (parser == nullptr) {
        logError("ERROR: %s%s without a valid parser?!\n", what, name);
        return nullptr;
    }
    CollectorPlugin* const collector = parser->getCollector(operation->getCollectorType());
    if (collector == nullptr) {
        logError("ERROR: %s%s with invalid type %s?!\n", what, name, operation->getCollectorType().c_str());
    }
    return collector;
}

int Operation::dispatchRead(Operation* operation, const std::string& argument) {
    CollectorPlugin* const collector = findCollector(operation, "Trying to do immediate read of operation ");
    return collector == nullptr ? -1 : collector->doImmediateRead(operation, argument);
}

int Operation::dispatchWrite(Operation* operation, const std::string& argument) {
    CollectorPlugin* const collector = findCollector(operation, "Trying to do immediate write of operation ");
    return collector == nullptr ? -1 : collector->doImmediateWrite(operation, argument);
}

int Operation::dispatchRead(Operation* /*operation*/, const EntityHandle* /*entity*/) {
    logWarning("WARNING: %s functionality is TODO!\n", "pwr::Operation::dispatchRead");
    return -1;
}

int Operation::dispatchWrite(Operation* /*operation*/, const EntityHandle* /*entity*/) {
    logWarning("WARNING: %s functionality is TODO!\n", "pwr::Operation::dispatchWrite");
    return -1;
}

} // namespace pwr
