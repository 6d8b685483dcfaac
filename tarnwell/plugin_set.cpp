#include "tarnwell/plugin_set.h"

#include "common/plugin/collector_plugin.h"
#include "common/plugin/metric_plugin.h"
#include "common/writer/writer_plugin.h"

namespace tarnwell {

PluginSet::~PluginSet() = default;

void PluginSet::load(const std::string& folder,
                     const std::vector<std::pair<std::string, std::string>>& options) {
    for (const auto& [key, value] : options) {
        m_loader.setOption(key, value);
    }
    const int result = m_loader.loadFolder(folder);
    for (const pwr::PluginFile& file : m_loader.getFiles()) {
        if (!file.error.empty()) {
            m_problems.push_back(file.error);
        }
    }
    m_collectors = m_loader.getPlugins<CollectorPlugin>();
    m_metrics = m_loader.getPlugins<MetricPlugin>();
    const auto writers = m_loader.getPlugins<WriterPlugin>();
    m_writers.insert(writers.begin(), writers.end());
    if (result != 0 && m_loader.getFiles().empty()) {
        m_problems.push_back("no plug-ins: the folder " + folder + " cannot be read");
    } else if (!isComplete()) {
        const char* const kind = m_collectors.empty() ? "collector" : m_metrics.empty() ? "metric" : "writer";
        m_problems.push_back("there is no " + std::string(kind) + " plug-in in " + folder +
                             ": is the installation complete?");
    }
}

} // namespace tarnwell
