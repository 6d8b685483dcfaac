#pragma once

#include <cstdint>
#include <map>
#include <memory>

#include "common/plugin/logger.h"
#include "common/plugin/metric_plugin.h"
#include "plugins/metrics/declared_messages.h"
#include "plugins/metrics/metric_containers.h"

namespace pwr {

/// A metric plug-in that is driven by declarations alone. `Computer` turns the readings of one message
/// into samples of its container:
///     static const char* PLUGIN               the plug-in's name, which metrics name in their key PLUGIN
///     static constexpr bool TAKES_UNNAMED     it also takes metrics that name no plug-in
///     static const char* DESCRIPTION          one sentence
///     static const char* unfit(declaration)   why a metric cannot be computed; null when it can
///     Computer(message, container, system)    keeps references
///     void update()                           instances were appended to the message
///     void process(reading)
///     void finish(stopTick)                   before the container is finalised
template <class Computer> class DataDrivenPlugin : public MetricPlugin {
public:
    DataDrivenPlugin()
        : MetricPlugin(Computer::PLUGIN), m_declared(Computer::PLUGIN, Computer::TAKES_UNNAMED) {}

    const char* getDescription() const override { return Computer::DESCRIPTION; }

    int processMetadata(const Metadata& declaration) override {
        return m_declared.processMetadata(declaration);
    }

    int processInstances(const MsgMetadata& message, const MessageInstances& instances) override {
        const DeclaredMessage* declared = m_declared.processInstances(message, instances);
        if (declared == nullptr || m_system == nullptr) {
            return 0; // another plug-in's, or too early for a container
        }
        return make_i(*declared);
    }

    int initializeCollection(const SystemMetadata& system) override {
        m_system = &system;
        int result = 0;
        for (const auto& message : m_declared.messages()) {
            result |= make_i(*message);
        }
        return result;
    }

    int processMessage(const CollectionData& reading) override {
        const auto computer = m_computers.find(reading.header().id);
        if (computer != m_computers.end()) {
            computer->second->process(reading);
        }
        return 0;
    }

    int finalizeCollection(std::uint64_t stopTick) override {
        for (const auto& [id, computer] : m_computers) {
            computer->finish(stopTick);
        }
        return m_containers.finalize();
    }

private:
    int make_i(const DeclaredMessage& message) {
        const auto known = m_computers.find(message.id);
        if (known != m_computers.end()) {
            known->second->update();
            return 0;
        }
        if (message.instances.empty()) {
            return 0; // nobody to make a table about
        }
        const char* const reason = Computer::unfit(*message.metric);
        if (reason != nullptr) {
            logWarning("WARNING: %s: %s\n", message.metric->name.c_str(), reason);
            return 1;
        }
        MetricContainer* container = m_containers.containerOf(message, *m_system);
        if (container == nullptr) {
            return 1;
        }
        m_computers.emplace(message.id, std::make_unique<Computer>(message, *container, *m_system));
        return 0;
    }

    DeclaredMessages m_declared;
    MetricContainers m_containers;
    const SystemMetadata* m_system = nullptr;
    std::map<id_config_t, std::unique_ptr<Computer>> m_computers;
};

} // namespace pwr
