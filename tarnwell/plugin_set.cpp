#include "tarnwell/plugin_set.h"

#include "common/machine_files.h"
#include "common/metadata/metric_metadata.h"
#include "common/plugin/collector_plugin.h"
#include "common/plugin/metric_plugin.h"
#include "common/pw_utils.h"
#include "common/writer/writer_plugin.h"
#include "tarnwell/settings.h"
#include "tarnwell/terminal.h"

#include <algorithm>

namespace tarnwell {
namespace {

std::string stemOf(const std::string& path) {
    const std::string name = pwr::PathOps::getFilenameFromPath(path);
    return name.substr(0, name.rfind('.'));
}

} // namespace

std::unique_ptr<pwr::MachineFiles> openChosenMachine(const Settings& settings, std::string& reason) {
    auto machine = pwr::openMachine(settings.machine, reason);
    if (machine == nullptr) {
        reason = "cannot read the machine " + settings.machine + ": " + reason;
    }
    return machine;
}

PluginOptions reportingOptions() {
    return {{"color", wantsColor() ? "1" : "0"}};
}

PluginOptions collectingOptions(const Settings& settings) {
    PluginOptions options = reportingOptions();
    options.emplace_back("machine", settings.machine);
    if (!settings.endpointTable.empty()) {
        options.emplace_back("endpoints", settings.endpointTable);
    }
    return options;
}

PluginSet::~PluginSet() = default;

void PluginSet::load(const std::string& folder, const PluginOptions& options) {
    m_folder = folder;
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
    }
}

std::string PluginSet::missingKind(bool collects) const {
    const char* const kind = collects && m_collectors.empty() ? "collector"
                             : m_metrics.empty()              ? "metric"
                             : m_writers.empty()              ? "writer"
                                                              : nullptr;
    return kind == nullptr ? std::string()
                           : "there is no " + std::string(kind) + " plug-in in " + m_folder +
                                 ": is the installation complete?";
}

MessageAvailability PluginSet::whyNotServed(const std::string& collectorType) const {
    using State = MessageAvailability::State;
    MessageAvailability why{State::ABSENT, "no plug-in collects " + collectorType, {}};
    for (const auto& [name, manifest] : m_loader.getManifests()) {
        if (manifest.types.count(collectorType) == 0) {
            continue;
        }
        if (!manifest.isForThisSystem()) {
            return {State::NOT_HERE, {}, {}};
        }
        why.reason = "plug-in " + name + " is not there";
        why.fix = "install it in " + m_folder;
        for (const pwr::PluginFile& file : m_loader.getFiles()) {
            if (!file.error.empty() && stemOf(file.path) == name) {
                why = {State::ABSENT, file.error, {}};
            }
        }
    }
    return why;
}

std::vector<std::string> PluginSet::missingMetricPlugins(
    const std::vector<const pwr::Metadata*>& declarations) const {
    std::set<std::string> notes;
    for (const pwr::Metadata* declaration : declarations) {
        const auto* metric = dynamic_cast<const pwr::MetricMetadata*>(declaration);
        for (const auto& [key, value] :
             metric == nullptr ? pwr::MetricMetadata::ValueList() : metric->getValues()) {
            const bool isThere = key != "PLUGIN" || std::any_of(m_metrics.begin(), m_metrics.end(),
                                                                [n = value](const MetricPlugin* plugin) {
                                                                    return plugin->getName() == n;
                                                                });
            if (!isThere) {
                notes.insert("there is no metric plug-in \"" + value + "\"");
            }
        }
    }
    return {notes.begin(), notes.end()};
}

std::string PluginSet::versionOf(const Plugin& plugin) const {
    const auto& files = m_loader.getFiles();
    const auto file =
        std::find_if(files.begin(), files.end(), [&](const auto& f) { return f.plugin.get() == &plugin; });
    return file == files.end() ? std::string() : file->libraryVersion;
}

} // namespace tarnwell
