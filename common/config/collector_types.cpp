#include "common/config/collector_types.h"

#include "common/config/operation_kinds.h"
#include "common/plugin/logger.h"

namespace pwr {

namespace {

/// Whether the fourth field of a statement can hold the word and mean a collector by it.
bool isTypeWord(const std::string& word) {
    return !word.empty() && word.find_first_of("_=#:, \t\r\n") == std::string::npos && word != "MSG" &&
           word != "CONSTANT";
}

} // namespace

int CollectorTypes::add(const std::string& type, CollectorPlugin* collector,
                        const std::set<std::string>& categories) {
    if (!isTypeWord(type)) {
        logWarning("WARNING: \"%s\" cannot name a collector type\n", type.c_str());
        return 1;
    }
    Entry& entry = m_types[type];
    if (collector != nullptr && entry.collector != nullptr && entry.collector != collector) {
        logWarning("WARNING: collector type %s is served by another collector already\n", type.c_str());
        return 1;
    }
    if (collector != nullptr) {
        entry.collector = collector;
    }
    entry.categories.insert(categories.begin(), categories.end());
    return 0;
}

void CollectorTypes::forget(const CollectorPlugin* collector) {
    for (auto& [type, entry] : m_types) {
        entry.collector = entry.collector == collector ? nullptr : entry.collector;
    }
}

bool CollectorTypes::isKnown(const std::string& type) const {
    return m_types.count(type) != 0 || OperationKinds::contains(type);
}

std::string CollectorTypes::list() const {
    std::set<std::string> types = OperationKinds::getTypes();
    for (const auto& [type, entry] : m_types) {
        types.insert(type);
    }
    std::string text;
    for (const std::string& type : types) {
        text += (text.empty() ? "" : ", ") + type;
    }
    return text;
}

bool CollectorTypes::isCategoryKnown(const std::string& type, const std::string& category) const {
    const auto entry = m_types.find(type);
    return entry != m_types.end() && entry->second.categories.count(category) != 0;
}

CollectorPlugin* CollectorTypes::getCollector(const std::string& type) const {
    const auto entry = m_types.find(type);
    return entry == m_types.end() ? nullptr : entry->second.collector;
}

} // namespace pwr
