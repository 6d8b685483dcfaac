#pragma once

#include "common/plugin/plugin_loader.h"

#include <set>
#include <string>
#include <vector>

class CollectorPlugin;
class MetricPlugin;
class WriterPlugin;

namespace tarnwell {

/// The plug-ins of one run, by kind, in the order of their file names. A plug-in that does not load is
/// a problem with a text; the others serve.
class PluginSet {
public:
    PluginSet() = default;
    PluginSet(const PluginSet&) = delete;
    PluginSet& operator=(const PluginSet&) = delete;
    ~PluginSet();

    /// Loads every module of @p folder and hands it the options, then initialises it.
    void load(const std::string& folder, const std::vector<std::pair<std::string, std::string>>& options);

    const std::vector<CollectorPlugin*>& collectors() const { return m_collectors; }
    const std::vector<MetricPlugin*>& metrics() const { return m_metrics; }
    std::set<WriterPlugin*>& writers() { return m_writers; }

    /// Whether there is a plug-in of every kind, without which nothing can be collected and reported.
    bool isComplete() const { return !m_collectors.empty() && !m_metrics.empty() && !m_writers.empty(); }

    /// One sentence for each plug-in that could not be used.
    const std::vector<std::string>& problems() const { return m_problems; }

private:
    pwr::PluginLoader m_loader;
    std::vector<CollectorPlugin*> m_collectors;
    std::vector<MetricPlugin*> m_metrics;
    std::set<WriterPlugin*> m_writers;
    std::vector<std::string> m_problems;
};

} // namespace tarnwell
