#include "common/config/writer_interface_configfile_parser.h"

#include "common/config/config_text_reader.h"
#include "common/config/output_config_entries.h"
#include "common/config/output_config_grammar.h"
#include "common/plugin/logger.h"

namespace pwr {

namespace {

std::unique_ptr<WriterInterfaceConfigFileParser>& theParser() {
    static std::unique_ptr<WriterInterfaceConfigFileParser> parser;
    return parser;
}

std::string prefixOf(std::string_view featureTag, const std::string& containerTag) {
    std::string prefix(featureTag);
    prefix += '_';
    prefix += containerTag;
    return prefix;
}

bool copyNames(const std::vector<std::string>& configured, std::deque<std::string>& out) {
    if (configured.empty()) {
        return false;
    }
    out.assign(configured.begin(), configured.end());
    return true;
}

} // namespace

WriterInterfaceConfigFileParser::WriterInterfaceConfigFileParser()
    : m_entries(std::make_unique<OutputConfigEntries>()) {}

WriterInterfaceConfigFileParser::~WriterInterfaceConfigFileParser() = default;

WriterInterfaceConfigFileParser* WriterInterfaceConfigFileParser::instance() {
    auto& parser = theParser();
    if (parser == nullptr) {
        parser.reset(new WriterInterfaceConfigFileParser);
    }
    return parser.get();
}

WriterInterfaceConfigFileParser* WriterInterfaceConfigFileParser::current() {
    return theParser().get();
}

void WriterInterfaceConfigFileParser::destroy() {
    theParser().reset();
}

int WriterInterfaceConfigFileParser::parse(const std::vector<std::string>& files) {
    OutputConfigGrammar grammar(*m_entries);
    int result = 0;
    for (const std::string& file : files) {
        if (readConfigFile(file, [&grammar](const Statement& statement, std::string& problem) {
                return grammar.apply(statement, problem);
            }) != 0) {
            result = 1;
        }
    }
    m_entries->checkOrders();
    return result;
}

int WriterInterfaceConfigFileParser::parseText(const std::string& name, std::string_view text) {
    OutputConfigGrammar grammar(*m_entries);
    const int result =
        readConfigText(name, text, [&grammar](const Statement& statement, std::string& problem) {
            return grammar.apply(statement, problem);
        });
    m_entries->checkOrders();
    return result == 0 ? 0 : 1;
}

bool WriterInterfaceConfigFileParser::getTableInfoFor(TableInfo& info, const std::string& featureTag,
                                                      const std::string& containerTag,
                                                      const std::string& tableName) const {
    info = TableInfo();
    if (!hasTableEntriesFor(featureTag, containerTag)) {
        logWarning(
            "WARNING: Output config table entries not present for the feature-switch-tag and "
            "metric-container-tag combo: '%s_%s'. Add table entries specific to Metric container type.\n",
            featureTag.c_str(), containerTag.c_str());
        return false;
    }
    bool isFound = false;
    for (const std::string_view tag : {std::string_view(featureTag), OutputConfigEntries::ANY_FEATURE}) {
        const ContainerTables* const container = m_entries->findTables(prefixOf(tag, containerTag));
        if (container == nullptr) {
            continue;
        }
        const auto table = container->tables.find(tableName);
        if (table != container->tables.end()) {
            info.addMissingEntries(table->second);
            isFound = true;
        }
    }
    return isFound;
}

bool WriterInterfaceConfigFileParser::hasTableEntriesFor(const std::string& featureTag,
                                                         const std::string& containerTag) const {
    return m_entries->findTables(prefixOf(featureTag, containerTag)) != nullptr ||
           m_entries->findTables(prefixOf(OutputConfigEntries::ANY_FEATURE, containerTag)) != nullptr;
}

bool WriterInterfaceConfigFileParser::getTableOrderForMetric(std::deque<std::string>& tables,
                                                             const std::string& prefix) const {
    const ContainerTables* const container = m_entries->findTables(prefix);
    return container != nullptr && copyNames(container->order, tables);
}

bool WriterInterfaceConfigFileParser::getMetricOrderForFeature(std::deque<std::string>& containers,
                                                               const std::string& featureTag) const {
    const auto order = m_entries->containerOrders.find(featureTag);
    return order != m_entries->containerOrders.end() && copyNames(order->second.names, containers);
}

bool WriterInterfaceConfigFileParser::getFeatureOrder(std::deque<std::string>& features) const {
    return copyNames(m_entries->featureOrder.names, features);
}

bool WriterInterfaceConfigFileParser::getAllFeaturePrefixes(std::deque<std::string>& prefixes) const {
    return copyNames(m_entries->prefixes, prefixes);
}

} // namespace pwr
