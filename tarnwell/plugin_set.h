#pragma once

#include "common/plugin/collector_plugin.h"
#include "common/plugin/plugin_loader.h"

#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

class MetricPlugin;
class WriterPlugin;

namespace pwr {
class MachineFiles;
class Metadata;
} // namespace pwr

namespace tarnwell {

struct Settings;

/// The machine that the settings name; null with a sentence in @p reason.
std::unique_ptr<pwr::MachineFiles> openChosenMachine(const Settings& settings, std::string& reason);

using PluginOptions = std::vector<std::pair<std::string, std::string>>;

/// The options of plug-ins that report, and of those that read a machine as well.
PluginOptions reportingOptions();
PluginOptions collectingOptions(const Settings& settings);

/// The plug-ins of one run, by kind, in the order of their file names. A plug-in that does not load is
/// a problem with a text; the others serve.
class PluginSet {
public:
    PluginSet() = default;
    PluginSet(const PluginSet&) = delete;
    PluginSet& operator=(const PluginSet&) = delete;
    ~PluginSet();

    /// Loads every module of @p folder and hands it the options, then initialises it.
    void load(const std::string& folder, const PluginOptions& options);

    const std::vector<CollectorPlugin*>& collectors() const { return m_collectors; }
    const std::vector<MetricPlugin*>& metrics() const { return m_metrics; }
    std::set<WriterPlugin*>& writers() { return m_writers; }

    /// Why nothing can be reported, or, when it @p collects, collected: a kind of plug-in that is missing.
    /// "" when all are there.
    std::string missingKind(bool collects) const;

    /// Why no collector serves a type: its plug-in could not be loaded, or is for other systems.
    MessageAvailability whyNotServed(const std::string& collectorType) const;

    /// One sentence for each metric plug-in that declared metrics name and nobody installed: they would be missing
    /// without a word.
    std::vector<std::string> missingMetricPlugins(
        const std::vector<const pwr::Metadata*>& declarations) const;

    /// The version of the library that a plug-in was built with.
    std::string versionOf(const Plugin& plugin) const;

    /// One sentence for each plug-in that could not be used.
    const std::vector<std::string>& problems() const { return m_problems; }

private:
    pwr::PluginLoader m_loader;
    std::string m_folder;
    std::vector<CollectorPlugin*> m_collectors;
    std::vector<MetricPlugin*> m_metrics;
    std::set<WriterPlugin*> m_writers;
    std::vector<std::string> m_problems;
};

} // namespace tarnwell
