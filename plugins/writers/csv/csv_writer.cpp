#include "common/plugin/logger.h"
#include "common/plugin/plugin_environment.h"
#include "common/plugin/plugin_loader.h"
#include "common/result_file.h"
#include "common/values/data.h"
#include "common/writer/table_message.h"
#include "common/writer/writer_message.h"
#include "common/writer/writer_plugin.h"
#include "plugins/writers/csv/csv_table.h"

#include <map>
#include <memory>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace csv_writer {

/// Writes each table to a file of its own, PREFIX_<feature>_<container>_<table>.csv, when a result-file prefix is
/// set; without one it does nothing. Files are written at the flush, so that an aborted collection leaves none.
class CsvWriter : public WriterPlugin {
public:
    CsvWriter() : WriterPlugin("csv") {
        auto capability = std::make_unique<PluginCapability>("csv", "one tidy file for each table");
        capability->addGroup("table-class:summary");
        capability->addGroup("table-class:static-info");
        capability->addGroup("results:files"); // nothing on the standard output
        if (addCapability(capability.get()) == 0) {
            static_cast<void>(capability.release()); // the base owns it now
        }
    }

    const char* getDescription() const override { return "writes each result table to a CSV file"; }

    int flushResults() override {
        const std::string& prefix = g_pluginEnvironment->getResultFilePrefix();
        int result = 0;
        for (const auto& [name, text] : m_files) {
            std::string error;
            if (pwr::ResultFile::writeWhole(prefix + name, text, error) != 0) {
                pwr::logError("ERROR: Cannot write the table %s\n", error.c_str());
                result = 1;
            }
        }
        m_files.clear();
        m_names.clear();
        return result;
    }

private:
    int writeMessage(const pwr::MetricContainerInfoMessage& message) override {
        auto& [feature, container] = m_containers[message.getMetricContainerId()];
        feature = message.getMetricFeatureTag().empty() ? feature : message.getMetricFeatureTag();
        container = message.getMetricContainerTag().empty() ? container : message.getMetricContainerTag();
        return message.getStaticTableRowInfo() != nullptr ? writeMessage(*message.getStaticTableRowInfo())
                                                          : 0;
    }

    int writeMessage(const pwr::TableMessage& table) override {
        if (!g_pluginEnvironment->getResultFilePrefix().empty()) {
            m_files.emplace_back(freeName_i(table), csvText(table));
        }
        return 0;
    }

    /// A name that no other table of this run has, also where file names ignore case.
    std::string freeName_i(const pwr::TableMessage& table) {
        std::string feature = table.getFeatureTag();
        std::string container = table.getContainerTag();
        const auto known = m_containers.find(table.getMetricContainerId());
        if (feature.empty() && known != m_containers.end()) {
            std::tie(feature, container) = known->second;
        }
        const std::string& key = table.getTableKey().empty() ? table.getTitle() : table.getTableKey();
        std::string stem;
        for (const std::string& tag : {feature, container, key}) {
            const std::string part = fileNamePart(tag);
            stem += part.empty() ? "" : "_" + part;
        }
        stem = stem.empty() ? "_table" : stem;
        std::string name = stem;
        for (unsigned number = 2; !m_names.insert(lowerCase_i(name)).second; ++number) {
            name = stem + "_" + std::to_string(number);
        }
        return name + ".csv";
    }

    static std::string lowerCase_i(std::string text) {
        for (char& c : text) {
            c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
        }
        return text;
    }

    std::map<unsigned, std::pair<std::string, std::string>> m_containers; ///< feature and container tag
    std::vector<std::pair<std::string, std::string>> m_files; ///< name behind the prefix, and text
    std::set<std::string> m_names;
};

} // namespace csv_writer

KRCOMMON_PLUGIN("csv", KR_PLUGIN_WRITER, csv_writer::CsvWriter);
