#pragma once

#include "common/plugin/collector_plugin.h"
#include "common/plugin/plugin_environment.h"
#include "common/plugin/plugin_loader.h"
#include "common/values/data.h"

/// A collector that can do nothing but be loaded. It tells the environment's queue of its life.
class NamedPlugin : public CollectorPlugin {
public:
    explicit NamedPlugin(const std::string& name) : CollectorPlugin(name) { tell("made"); }
    ~NamedPlugin() override { tell("destroyed"); }
    NamedPlugin(const NamedPlugin&) = delete;
    NamedPlugin& operator=(const NamedPlugin&) = delete;

    int initialize() override {
        tell("initialized");
        return 0;
    }
    int shutdown() override {
        tell("shut down");
        return m_shutdownResult;
    }
    int setOption(const std::string& key, const std::string& /*value*/) override {
        m_shutdownResult = key == getName() ? 5 : 0;
        return 0;
    }
    const char* getDescription() const override { return "for tests"; }
    std::vector<std::string> getCollectorTypes() const override { return {}; }
    int open(const pwr::MsgMetadata& /*message*/, MessageInstances& /*out*/) override { return 0; }
    int read(const pwr::MsgMetadata& /*message*/, CollectionData& /*out*/) override { return 0; }

protected:
    void tell(const std::string& event) const {
        g_pluginEnvironment->queueMessage((getName() + " " + event).c_str());
    }

private:
    int m_shutdownResult = 0;
};
