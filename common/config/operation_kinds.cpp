#include "common/config/operation_kinds.h"

#include <map>
#include <utility>

namespace pwr {

namespace {

std::unique_ptr<Operation> makeHWOperation(const std::string& name, const std::string& collectorType) {
    return std::make_unique<HWOperation>(name, collectorType);
}

using Table = std::map<std::string, OperationKinds::Factory>;

Table& theTable() {
    // Part of the language whether or not a collector serves it.
    static Table table = {{"AGGR-TELEM", makeHWOperation}};
    return table;
}

} // namespace

void OperationKinds::add(const std::string& collectorType, Factory factory) {
    theTable().insert_or_assign(collectorType, std::move(factory));
}

bool OperationKinds::contains(const std::string& collectorType) {
    return theTable().count(collectorType) != 0;
}

std::set<std::string> OperationKinds::getTypes() {
    std::set<std::string> types;
    for (const auto& [type, factory] : theTable()) {
        types.insert(type);
    }
    return types;
}

std::unique_ptr<Operation> OperationKinds::make(const std::string& name, const std::string& collectorType) {
    const auto kind = theTable().find(collectorType);
    return kind == theTable().end() ? makeHWOperation(name, collectorType)
                                    : kind->second(name, collectorType);
}

} // namespace pwr
