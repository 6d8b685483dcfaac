#include "common/config/output_config_entries.h"

#include "common/plugin/logger.h"

namespace pwr {

void OrderedNames::add(std::string_view name) {
    const auto place = known.lower_bound(name);
    if (place == known.end() || *place != name) {
        known.emplace_hint(place, name);
        names.emplace_back(name);
    }
}

bool OutputConfigEntries::addTableEntry(std::string_view featureTag, std::string_view prefix,
                                        std::string_view table, std::string_view key,
                                        std::string_view value) {
    auto container = tables.find(prefix);
    if (container == tables.end()) {
        container = tables.emplace(prefix, ContainerTables()).first;
        prefixes.emplace_back(prefix);
        if (featureTag != ANY_FEATURE) {
            featuresWithTables.add(featureTag);
        }
    }
    ContainerTables& known = container->second;
    auto info = known.tables.find(table);
    if (info == known.tables.end()) {
        info = known.tables.emplace(table, TableInfo()).first;
        known.order.emplace_back(table);
    }
    return info->second.setKeyValuePair(key, value);
}

const ContainerTables* OutputConfigEntries::findTables(std::string_view prefix) const {
    const auto found = tables.find(prefix);
    return found == tables.end() ? nullptr : &found->second;
}

void OutputConfigEntries::checkOrders() const {
    std::string withoutContainers;
    for (const std::string& feature : featureOrder.names) {
        if (feature != ANY_FEATURE && !containerOrders.contains(feature)) {
            withoutContainers += feature + ", ";
        }
    }
    if (!withoutContainers.empty()) {
        logWarning(
            "\nWARNING: Output Config: Ordering requested for the following features, but corresponding "
            "metric container ordering entries (ALL_<FEATURE-SWITCH-TAG>_TAG_TABLE_ORDER) missing:\n"
            "%s\n\n",
            withoutContainers.c_str());
    }

    std::string withoutOrder;
    for (const std::string& feature : featuresWithTables.names) {
        if (!featureOrder.known.contains(feature)) {
            withoutOrder += feature + ", ";
        }
    }
    if (!withoutOrder.empty()) {
        logWarning(
            "\nWARNING: Output Config: Metric container table entries present for the following feature, "
            "but feature ordering not explicitly requested. Missing feature switch tags in "
            "'ALL_OUTPUT-ORDER_TAG_FEATURE_ORDER=<FEATURE-SWITCH-TAG>,...'. (This may be acceptable for "
            "metrics that don't need to be in specific order):\n"
            "%s\n\n",
            withoutOrder.c_str());
    }
}

} // namespace pwr
