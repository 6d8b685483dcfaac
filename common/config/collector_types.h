#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>

class CollectorPlugin;

namespace pwr {

/// The collector type words that statements may use, with their hardware categories and, once its module is
/// loaded, the collector that serves each. Collectors are not owned.
class CollectorTypes {
public:
    /// Enters a type, or completes one: a collector takes the place of none, categories add up. 1 and a warning
    /// when the word cannot stand in a statement, or when another collector serves the type.
    int add(const std::string& type, CollectorPlugin* collector, const std::set<std::string>& categories);

    /// The collector serves nothing any more; the words stay.
    void forget(const CollectorPlugin* collector);

    /// Also true for types that come with an operation kind.
    [[nodiscard]] bool isKnown(const std::string& type) const;
    /// The known types, separated by ", ".
    [[nodiscard]] std::string list() const;
    [[nodiscard]] bool isCategoryKnown(const std::string& type, const std::string& category) const;
    /// Null when nobody serves the type.
    [[nodiscard]] CollectorPlugin* getCollector(const std::string& type) const;

private:
    struct Entry {
        CollectorPlugin* collector = nullptr;
        std::set<std::string> categories;
    };
    std::map<std::string, Entry> m_types;
};

} // namespace pwr
