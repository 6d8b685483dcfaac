#pragma once

#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "common/config/table_info.h"
#include "common/export.h"

namespace pwr {

struct OutputConfigEntries;

/// Reads the output configuration: which tables a metric container shows, their titles and notes, and the order
/// of features, of containers within a feature and of tables within a container.
/// Statements:  ALL_OUTPUT-ORDER_TAG_FEATURE_ORDER=feature, feature, ...
///              ALL_<feature>_TAG_TABLE_ORDER=container, container, ...
///              <feature or ALL>_<container>_<table>_<key>_<sub-key>=text
/// Several parse() calls add up. Out-parameters of the queries are replaced on success and otherwise left alone.
/// Ownership:   one object for the process, made by the host with instance(); destroy() ends it.
/// Threads:     one at a time.
class KRCOMMON_API WriterInterfaceConfigFileParser {
public:
    static WriterInterfaceConfigFileParser* instance();
    /// The parser if the host has made one, else null; never makes one.
    static WriterInterfaceConfigFileParser* current();
    static void destroy();

    WriterInterfaceConfigFileParser(const WriterInterfaceConfigFileParser&) = delete;
    WriterInterfaceConfigFileParser& operator=(const WriterInterfaceConfigFileParser&) = delete;
    ~WriterInterfaceConfigFileParser();

    /// Reads all files and checks that orders and entries fit together (warnings only). Returns 0, or 1 when a
    /// file could not be opened or a line was bad; every bad line is reported and the good ones count.
    int parse(const std::vector<std::string>& files);

    /// The same for a text that is no file, such as the one kept in a saved collection; the name stands in reports.
    int parseText(const std::string& name, std::string_view text);

    /// The settings of a table: those given for the feature and container, completed by those given for the
    /// container under "ALL". False when there are none; then `info` holds the defaults, with a warning when
    /// neither prefix has any entry.
    bool getTableInfoFor(TableInfo& info, const std::string& featureTag, const std::string& containerTag,
                         const std::string& tableName) const;

    /// Whether any table is configured for the feature and container, or for the container under "ALL"; silent.
    [[nodiscard]] bool hasTableEntriesFor(const std::string& featureTag,
                                          const std::string& containerTag) const;

    /// The orders as configured, each false when there is none. The tables of a prefix (feature "_" container)
    /// stand in the order in which the configuration first mentions them, and so do the prefixes.
    bool getTableOrderForMetric(std::deque<std::string>& tables, const std::string& prefix) const;
    bool getMetricOrderForFeature(std::deque<std::string>& containers, const std::string& featureTag) const;
    bool getFeatureOrder(std::deque<std::string>& features) const;
    bool getAllFeaturePrefixes(std::deque<std::string>& prefixes) const;

private:
    WriterInterfaceConfigFileParser();

    std::unique_ptr<OutputConfigEntries> m_entries;
};

} // namespace pwr
