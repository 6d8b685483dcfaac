#pragma once

#include "common/config/input_msg.h"
#include "common/config/tw_configfile_parser.h"
#include "common/metadata/cpu_metadata.h"
#include "common/metadata/msg_metadata.h"
#include "common/metadata/system_metadata.h"
#include "common/model/data_descriptor.h"
#include "common/model/data_handle_provider.h"
#include "common/model/entity_handle.h"
#include "common/plugin/collector_plugin.h"
#include "tests/support/log_capture.h"
#include "tests/support/module_file.h"
#include "tests/support/told_clock.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tests {

/// A collector module on a machine, with the topology that a host would have made of it.
class CollectorFixture : public ::testing::Test {
public:
    using Keys = std::vector<std::pair<std::string, std::string>>;

    /// Six numbers for each logical processor, as TopTree::buildTopology takes them.
    static void setTopology(const std::string& text) {
        pwr::SystemMetadata system;
        auto* cpu = new pwr::CPUMetadata();
        cpu->getCPUTopology().buildTopology(text, 0);
        system.setPlatformMetadata(pwr::PlatformType::CPU, cpu);
        pwr::DataHandleProvider::resetTopology(system);
    }
    /// Binary numbers of 64 bits, as a file holds them.
    static std::string binary(const std::vector<std::uint64_t>& numbers) {
        std::string bytes;
        for (const std::uint64_t number : numbers) {
            for (unsigned shift = 0; shift < 64; shift += 8) {
                bytes += static_cast<char>(number >> shift & 0xFFU);
            }
        }
        return bytes;
    }
    /// A message of one operation and its constants, not opened yet.
    static std::unique_ptr<pwr::MsgMetadata> makeMessage(const Keys& operation, const Keys& constants,
                                                         unsigned number) {
        auto message = std::make_unique<pwr::MsgMetadata>(1, number, number, "feature", "MSG");
        message->addMetaValue(pwr::OperationMetadata("op", "TEXT-FILE", 8, "", operation));
        message->addMetaValue(std::make_unique<pwr::CONSTANTOperationMetadata>("constants", constants));
        return message;
    }

protected:
    CollectorFixture() { setTopology("0 0 0 0 -1 -1\n1 0 1 0 -1 -1\n"); }
    ~CollectorFixture() override {
        std::error_code ignored;
        std::filesystem::remove(m_file, ignored);
        pwr::TWConfigFileParser::destroy();
    }

    void load(const std::string& module, const std::string& machine) {
        m_loader.setOption("machine", machine);
        ASSERT_EQ(0, loadModule(m_loader, module)) << m_log.text();
        m_plugin = m_loader.getPlugins<CollectorPlugin>().front();
    }
    /// A recorded machine of the fixtures, or one whose entries stand here.
    void loadRecorded(const std::string& name) {
        load("text_files", pwr::pw_getenv("KR_TEST_DATA") + "/machines/" + name + ".bundle");
    }
    void loadEntries(const std::string& entries, const std::string& module = "text_files") {
        m_file =
            std::filesystem::temp_directory_path() /
            (std::string("kr_collector_") + ::testing::UnitTest::GetInstance()->current_test_info()->name());
        std::ofstream(m_file, std::ios::binary) << "tarnwell-machine 1\n@1000\n" << entries << "end\n";
        load(module, m_file.string());
    }
    static std::string fileEntry(const std::string& path, const std::string& content) {
        return "file " + path + " " + std::to_string(content.size()) + "\n" + content + "\n";
    }
    CollectorPlugin& plugin() { return *m_plugin; }

    /// A message of the shipped hardware description, by its name; null when there is none for this collector.
    const pwr::MsgMetadata* shipped(const std::string& name) {
        if (m_shipped.empty()) {
            readShipped_i();
        }
        const auto found = std::find_if(m_shipped.begin(), m_shipped.end(),
                                        [&](const auto& record) { return record->getMsgName() == name; });
        return found == m_shipped.end() ? nullptr : found->get();
    }
    /// Opens it; null when it does not open.
    const pwr::MsgMetadata* openShipped(const std::string& name) {
        const pwr::MsgMetadata* message = shipped(name);
        return message != nullptr && m_plugin->open(*message, m_instances) == 0 ? message : nullptr;
    }
    /// What the collector says of it: "available", "not here", or "absent: reason (fix)" and the like.
    std::string availability(const pwr::MsgMetadata& message) { return textOf(m_plugin->probe(message)); }
    static std::string textOf(const MessageAvailability& seen) {
        constexpr std::array WORDS = {"available", "absent", "not here", "invalid"};
        return WORDS.at(static_cast<std::size_t>(seen.state)) +
               (seen.reason.empty() ? "" : ": " + seen.reason) +
               (seen.fix.empty() ? "" : " (" + seen.fix + ")");
    }
    /// One reading of a message that is opened for it, else why it cannot be.
    std::string openAndRead(const pwr::MsgMetadata& message) {
        return m_plugin->open(message, m_instances) == 0 ? read(message)
                                                         : m_instances.reason + " | " + m_instances.fix;
    }
    /// One reading: "entity/descriptor=value" for each instance, "-" for what is missing.
    std::string read(const pwr::MsgMetadata& message) {
        m_data.clear();
        if (m_plugin->read(message, m_data) != 0) {
            return "nothing read";
        }
        EXPECT_EQ(m_instances.instances.size(), m_data.size());
        std::string text;
        for (std::size_t i = 0; i < m_data.size(); ++i) {
            const auto& [entity, descriptor] = m_instances.instances[i];
            text += (i == 0 ? "" : " ") + entity->getName() +
                    (descriptor ? "/" + descriptor->getName() : "") + "=";
            text += !m_data.isPresent(i) ? "-"
                    : m_data.isText(i)   ? "'" + std::string(m_data.getText(i)) + "'"
                                         : std::to_string(m_data.getBits(i));
        }
        return text;
    }

    pwr::LogCapture m_log;
    ToldClock m_clock{1000};
    MessageInstances m_instances;
    CollectionData m_data;

private:
    void readShipped_i() {
        // All types are words of the description, whichever collector is tested.
        const std::string folder = pwr::pw_getenv("KR_TEST_BIN");
        pwr::TWConfigFileParser& parser = *pwr::TWConfigFileParser::instance();
        for (const std::string& path : pwr::doGlob(folder + "/plugins/*.manifest")) {
            std::ifstream file(path);
            const std::string text{std::istreambuf_iterator<char>(file), {}};
            pwr::PluginManifest manifest;
            std::string error;
            ASSERT_EQ(0, manifest.parse("any", text, error)) << error;
            for (const auto& [type, categories] : manifest.types) {
                parser.registerCollectorType(type, nullptr, categories);
            }
        }
        ASSERT_EQ(0, parser.parse(pwr::doGlob(folder + "/config/hardware/*.cfg"))) << m_log.text();
        std::vector<pwr::ConfigCap> capabilities;
        parser.getCapabilitiesFor(capabilities, "ALL=ALL");
        for (const pwr::ConfigCap& capability : capabilities) {
            std::vector<pwr::InputMsg*> messages;
            parser.getMessagesFor(messages, "ALL=ALL", capability.getConfigfilePrefix());
            for (const pwr::InputMsg* message : messages) {
                if (parser.getCollector((*message->begin())->getCollectorType()) == m_plugin) {
                    m_shipped.push_back(message->createMsgMetadata());
                    m_shipped.back()->setIDs(1, 1, static_cast<unsigned>(m_shipped.size()));
                }
            }
        }
    }

    pwr::PluginLoader m_loader;
    CollectorPlugin* m_plugin = nullptr;
    std::filesystem::path m_file;
    std::vector<std::unique_ptr<pwr::MsgMetadata>> m_shipped;
};

} // namespace tests
