#include "common/config/table_info.h"

namespace pwr {

bool TableInfo::setKeyValuePair(std::string_view key, std::string_view value) {
    const auto place = m_entries.lower_bound(key);
    if (place != m_entries.end() && place->first == key) {
        return false;
    }
    m_entries.emplace_hint(place, key, value);
    return true;
}

void TableInfo::addMissingEntries(const TableInfo& other) {
    m_entries.insert(other.m_entries.begin(), other.m_entries.end());
}

bool TableInfo::getTableTitle(std::string& title) const {
    return getConfigEntry("TITLE", title);
}

bool TableInfo::getPreTableNote(std::string& note) const {
    return getConfigEntry("PRE-TABLE-TEXT", note);
}

bool TableInfo::getPostTableNote(std::string& note) const {
    return getConfigEntry("POST-TABLE-TEXT", note);
}

bool TableInfo::isTableDisplayed() const {
    return !m_entries.contains("TABLE") || isConfigEntryYesOrNo("TABLE");
}

bool TableInfo::isTableTransposed() const {
    return isConfigEntryYesOrNo("TRANSPOSE");
}

bool TableInfo::suppressTotal() const {
    return isConfigEntryYesOrNo("SUPPRESS-TOTAL");
}

bool TableInfo::getConfigEntry(std::string_view key, std::string& value) const {
    const auto found = m_entries.find(key);
    if (found == m_entries.end()) {
        return false;
    }
    value = found->second;
    return true;
}

bool TableInfo::isConfigEntryYesOrNo(std::string_view key) const {
    const auto found = m_entries.find(key);
    return found != m_entries.end() && found->second == "YES";
}

} // namespace pwr
