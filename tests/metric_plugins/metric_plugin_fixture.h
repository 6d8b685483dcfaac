#pragma once

#include "common/config/writer_interface_configfile_parser.h"
#include "common/metadata/metric_metadata.h"
#include "common/metadata/msg_metadata.h"
#include "common/metadata/system_metadata.h"
#include "common/model/data_descriptor.h"
#include "common/model/entity_handle.h"
#include "common/plugin/metric_plugin.h"
#include "tests/support/log_capture.h"
#include "tests/support/module_file.h"
#include "tests/support/table_text.h"

#include <gtest/gtest.h>

#include <bit>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tests {

/// The metric modules, and messages of a collection that begins at tick 1000 of a 1000 MHz clock.
class MetricPluginFixture : public ::testing::Test {
protected:
    using Keys = std::vector<std::pair<std::string, std::string>>;
    using Values = std::vector<std::optional<std::uint64_t>>;

    MetricPluginFixture() {
        pwr::WriterInterfaceConfigFileParser::instance();
        loadModule(m_loader, "generic");
        loadModule(m_loader, "residency_carry");
        loadModule(m_loader, "temperatures");
        m_system.startTSC = 1000;
        m_system.twaClockFreq = 1000.0F;
    }
    ~MetricPluginFixture() override {
        m_loader.unload();
        pwr::WriterInterfaceConfigFileParser::destroy();
    }
    void SetUp() override { ASSERT_EQ(3U, m_loader.getPlugins<MetricPlugin>().size()); }

    /// Declares a message, a value for each "entity" or "entity/descriptor"; equal names are one handle.
    void declare(const Keys& keys, const std::vector<std::string>& instances, pw_u8_t number = 1) {
        pwr::MsgMetadata message(1, number, number, "feature", "MSG");
        const Keys defaults{{"METRIC-NAME", "M"}, {"CONTAINER-TAG", "TAG"}};
        Keys all = keys;
        all.insert(all.begin(), defaults.begin(), defaults.end());
        const pwr::MetricMetadata metric(1, number, all);
        MessageInstances handles;
        for (const std::string& name : instances) {
            const std::size_t slash = name.find('/');
            handles.instances.push_back(
                {entity_i(name.substr(0, slash)),
                 slash == std::string::npos ? nullptr : descriptor_i(name.substr(slash + 1))});
        }
        for (MetricPlugin* plugin : m_loader.getPlugins<MetricPlugin>()) {
            plugin->processMetadata(message);
            plugin->processMetadata(metric);
            plugin->processInstances(message, handles);
            plugin->initializeCollection(m_system);
        }
    }
    void read(std::uint64_t tick, const Values& values, pw_u8_t flags = 0, pw_u8_t number = 1) {
        CollectionData reading;
        reading.header().timestamp = tick;
        reading.header().id = {1, number, number};
        reading.header().flags = flags;
        for (const auto& value : values) {
            value ? reading.add(*value) : reading.addMissing();
        }
        process(reading);
    }
    void process(const CollectionData& reading) {
        for (MetricPlugin* plugin : m_loader.getPlugins<MetricPlugin>()) {
            plugin->processMessage(reading);
        }
    }
    /// Rows of the first table whose title has this in it, joined by "; ", then its notes in brackets.
    std::string finish(std::uint64_t stop, const std::string& title) {
        for (MetricPlugin* plugin : m_loader.getPlugins<MetricPlugin>()) {
            plugin->finalizeCollection(stop);
        }
        for (const TableText& table : m_capture.tables()) {
            if (table.title.find(title) != std::string::npos) {
                return rowsOf_i(table);
            }
        }
        return "no table";
    }

    pwr::SystemMetadata m_system;
    pwr::LogCapture m_log;
    TableCapture m_capture;
    pwr::PluginLoader m_loader;

private:
    static std::string rowsOf_i(const TableText& table) {
        std::string text;
        for (const std::string& row : table.rows) {
            text += (text.empty() ? "" : "; ") + row;
        }
        for (const std::string& note : table.postNotes) {
            text += " [" + note + "]";
        }
        return text;
    }
    const pwr::EntityHandle* entity_i(const std::string& name) {
        for (const pwr::EntityHandle* entity : m_entities) {
            if (entity->getName() == name) {
                return entity;
            }
        }
        m_entities.push_back(pwr::EntityHandle::create(name, nullptr));
        return m_entities.back();
    }
    static const pwr::DataDescriptor* descriptor_i(const std::string& name) {
        const pwr::DataDescriptor* known = pwr::DataHandleProvider::findDescriptor(name);
        return known != nullptr ? known : pwr::DataDescriptorBuilder(name).build();
    }

    std::vector<const pwr::EntityHandle*> m_entities;
};

} // namespace tests
