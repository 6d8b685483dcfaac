#pragma once

#include "common/config/writer_interface_configfile_parser.h"
#include "common/model/entity_handle.h"
#include "common/plugin/plugin_environment.h"
#include "common/plugin/plugin_loader.h"
#include "common/pw_utils.h"
#include "common/values/formatter.h"
#include "common/values/quantity.h"
#include "common/writer/table_message.h"
#include "common/writer/writer_plugin.h"
#include "common/writer/writer_stream.h"
#include "common/writer/writer_stream_host.h"
#include "tests/support/log_capture.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace tests {

/// A writer module, loaded as a host loads it, with an output to look at and a folder for its files.
class WriterFixture : public ::testing::Test {
protected:
    explicit WriterFixture(const std::string& module) {
        const std::string pattern = pwr::pw_getenv("KR_TEST_BIN") + "/plugins/" + module + ".*";
        for (const std::string& path : pwr::doGlob(pattern)) {
            m_loader.loadFile(path);
        }
        if (m_loader.getPlugins<WriterPlugin>().size() == 1) {
            m_plugins.insert(m_loader.getPlugins<WriterPlugin>().front());
        }
        m_stream = pwr::WriterStreamHost::create(m_plugins);
        g_pluginEnvironment->setWriterStream(m_stream);
        g_pluginEnvironment->setDataOutputHandle(&m_output);
        const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
        m_folder = std::filesystem::temp_directory_path() /
                   (std::string("kr_") + test->test_suite_name() + "_" + test->name());
        std::filesystem::remove_all(m_folder);
        std::filesystem::create_directories(m_folder);
    }
    ~WriterFixture() override {
        pwr::WriterStreamHost::destroy(m_stream);
        g_pluginEnvironment->setDataOutputHandle(nullptr);
        g_pluginEnvironment->setResultFilePrefix("");
        pwr::WriterInterfaceConfigFileParser::destroy();
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }
    void SetUp() override { ASSERT_EQ(1U, m_plugins.size()) << "the module was not loaded"; }

    WriterPlugin& writer() { return **m_plugins.begin(); }
    WriterStream& stream() { return *m_stream; }
    int flush() { return pwr::WriterStreamHost::flush(*m_stream); }
    std::string printed() const { return m_output.text; }
    std::string folder() const { return m_folder.string(); }
    void setPrefix(const std::string& name) {
        g_pluginEnvironment->setResultFilePrefix((m_folder / name).string());
    }
    std::string file(const std::string& name) const {
        std::ifstream in(m_folder / name, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }
    std::set<std::string> files() const {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(m_folder)) {
            names.insert(entry.path().filename().string());
        }
        return names;
    }

    /// A pushed table with one text label and REAL columns; a row is its label, then numbers, NAN for none.
    using Rows = std::vector<std::pair<std::string, std::vector<double>>>;
    void push(const std::string& title, const std::vector<std::string>& names, const Rows& rows,
              const std::string& feature = "", const std::string& container = "",
              const std::string& key = "") {
        pwr::TableMessage table(title, nullptr);
        std::vector<const pwr::EntityHandle*> entities;
        for (std::size_t i = 0; i < rows.size(); ++i) {
            entities.push_back(pwr::EntityHandle::create("row", nullptr));
            table.addEntity(entities.back());
        }
        table.setSource(feature, container, key);
        table.addField("Name", pwr::DataType::STRING, false);
        table.setLabelFieldCount(1);
        for (const std::string& name : names) {
            table.addField(name, pwr::DataType::REAL, false);
        }
        table.createTable();
        for (std::size_t i = 0; i < rows.size(); ++i) {
            table.setFieldValueAt(entities[i], 0, pwr::Data(rows[i].first));
            for (unsigned n = 0; n < rows[i].second.size(); ++n) {
                if (rows[i].second[n] == rows[i].second[n]) {
                    table.setFieldValueAt(entities[i], n + 1, pwr::Data(rows[i].second[n]));
                }
            }
        }
        pwr::TextNotes notes;
        notes.addPreTableNote("about " + title);
        table.setTextNotes(wantsNotes ? &notes : nullptr);
        m_stream->pushMessage(table);
    }

    bool wantsNotes = false;
    pwr::LogCapture log;

private:
    class CapturedOutput : public pwr::Logger {
    public:
        void emit(const char* bytes, std::size_t size) override { text.append(bytes, size); }
        std::string text;
    };

    CapturedOutput m_output;
    pwr::PluginLoader m_loader;
    std::set<WriterPlugin*> m_plugins;
    WriterStream* m_stream = nullptr;
    std::filesystem::path m_folder;
};

} // namespace tests
