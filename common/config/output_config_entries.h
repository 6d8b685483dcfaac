#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "common/config/table_info.h"
#include "common/config/text_hash.h"

namespace pwr {

/// Names in the order in which they were first added.
struct OrderedNames {
    std::vector<std::string> names;
    std::set<std::string, std::less<>> known;

    void add(std::string_view name);
};

/// The tables of one prefix (feature "_" container), and the order in which they were first mentioned.
struct ContainerTables {
    std::vector<std::string> order;
    std::map<std::string, TableInfo, std::less<>> tables;
};

/// What the statements of the output configuration have said so far.
struct OutputConfigEntries {
    static constexpr std::string_view ANY_FEATURE = "ALL";

    OrderedNames featureOrder;
    std::map<std::string, OrderedNames, std::less<>> containerOrders;                   // by feature
    std::unordered_map<std::string, ContainerTables, TextHash, std::equal_to<>> tables; // by prefix
    std::vector<std::string> prefixes; // keys of `tables`, by first mention
    OrderedNames featuresWithTables;   // "ALL" is no feature

    /// False when the table has an entry of that key already; the first one stays.
    bool addTableEntry(std::string_view featureTag, std::string_view prefix, std::string_view table,
                       std::string_view key, std::string_view value);

    [[nodiscard]] const ContainerTables* findTables(std::string_view prefix) const;

    /// Warns about features that are ordered without order of their containers, and the other way round about
    /// features that have tables without being ordered.
    void checkOrders() const;
};

} // namespace pwr
