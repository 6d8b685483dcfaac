#pragma once

#include "common/export.h"
#include "common/plugin/plugin_capability.h"
#include "common/plugin/plugin_requirement.h"

#include <memory>
#include <string>
#include <vector>

/// The base of collectors, metrics and writers. The order of the virtual operations is part of the
/// interface of binary plug-ins: a new one goes to the end and raises the interface version.
/// Threads: the host's thread, unless a derived class says otherwise.
/// Life:    made by its module, initialize(), work, shutdown(), destroyed through this base.
class KRCOMMON_API Plugin {
public:
    explicit Plugin(const std::string& name);
    virtual ~Plugin();
    Plugin(const Plugin&) = delete;
    Plugin& operator=(const Plugin&) = delete;

    /// Called once after loading, when the environment is filled; non-zero keeps the plug-in out.
    virtual int initialize();
    /// Called once before destruction, when initialize() has succeeded.
    virtual int shutdown();
    /// An option that the user gave for this plug-in; 1 when the key is unknown or the value unfit.
    virtual int setOption(const std::string& key, const std::string& value);
    /// In order of adding; the plug-in keeps them.
    virtual std::vector<const PluginCapability*> getCapabilities() const;
    /// Takes ownership on 0. A null capability or one of a known name gives 1 and stays the caller's.
    virtual int addCapability(PluginCapability* capability);
    /// One sentence for listings; never null.
    virtual const char* getDescription() const = 0;

    const std::string& getName() const { return m_name; }

private:
    std::string m_name;
    std::vector<std::unique_ptr<PluginCapability>> m_capabilities;
};
