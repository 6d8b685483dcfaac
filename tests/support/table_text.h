#pragma once

#include "common/model/data_handle_provider.h"
#include "common/model/entity_handle.h"
#include "common/plugin/plugin_environment.h"
#include "common/writer/table_message.h"
#include "common/writer/writer_message.h"
#include "common/writer/writer_plugin.h"
#include "common/writer/writer_stream.h"
#include "common/writer/writer_stream_host.h"

#include <cstddef>
#include <deque>
#include <set>
#include <string>
#include <vector>

namespace tests {

/// One delivered table as text: the title, the column titles and each row joined by " | ".
struct TableText {
    std::string title;
    std::string columns;
    std::vector<std::string> rows;
    std::vector<std::string> preNotes;
    std::vector<std::string> postNotes;
    std::string source; ///< "feature/container/key"
    unsigned containerId = 0;

    /// Title, columns and rows as lines: what most tests compare.
    std::string text() const {
        std::string all = title + "\n" + columns + "\n";
        for (const std::string& row : rows) {
            all += row + "\n";
        }
        return all;
    }
};

/// A writer plug-in that keeps what it is given: tables as text, and a line for each other message.
class CapturingWriter : public WriterPlugin {
public:
    CapturingWriter() : WriterPlugin("capture") {}

    const char* getDescription() const override { return "keeps what it is given"; }
    int flushResults() override { return 0; }

    std::vector<TableText> tables;
    std::vector<std::string>
        messages; ///< "text: ...", "header: ...", "ids: n", "system", "container: f/c", "metric"

private:
    int writeMessage(const pwr::TableMessage& table) override {
        TableText text;
        text.title = table.getTitle();
        text.source = table.getFeatureTag() + "/" + table.getContainerTag() + "/" + table.getTableKey();
        text.containerId = table.getMetricContainerId();
        if (table.getTextNotes() != nullptr) {
            table.getTextNotes()->getPreTableNotes(text.preNotes);
            table.getTextNotes()->getPostTableNotes(text.postNotes);
        }
        std::deque<std::string> titles;
        getColumnTitles(table, titles);
        text.columns = joined_i(titles, 0, titles.size());
        std::deque<std::string> values;
        getRowValues(table, values);
        for (std::size_t at = 0; !titles.empty() && at < values.size(); at += titles.size()) {
            text.rows.push_back(joined_i(values, at, titles.size()));
        }
        tables.push_back(text);
        return 0;
    }
    int writeMessage(const pwr::TextMessage& message) override {
        const bool isHeader = message.getMessageType() == pwr::MessageType::HEADER_TEXT;
        messages.push_back((isHeader ? "header: " : "text: ") + message.getMessage());
        return 0;
    }
    int writeMessage(const pwr::IdMessage& message) override {
        messages.push_back("ids: " + std::to_string(message.end() - message.begin()));
        return 0;
    }
    int writeMessage(const pwr::SystemMessage&) override {
        messages.emplace_back("system");
        return 0;
    }
    int writeMessage(const pwr::MetricContainerInfoMessage& message) override {
        messages.push_back("container: " + message.getMetricFeatureTag() + "/" +
                           message.getMetricContainerTag());
        return 0;
    }
    int writeMessage(const pwr::Metric&) override {
        messages.emplace_back("metric");
        return 0;
    }

    static std::string joined_i(const std::deque<std::string>& texts, std::size_t first, std::size_t count) {
        std::string line;
        for (std::size_t i = first; i < first + count; ++i) {
            line += (i == first ? "" : " | ") + texts[i];
        }
        return line;
    }
};

/// A stream with one capturing writer, installed in the environment and in the handle registry while it lives.
class TableCapture {
public:
    TableCapture() : m_plugins{&writer}, m_stream(pwr::WriterStreamHost::create(m_plugins)) {
        g_pluginEnvironment->setWriterStream(m_stream);
        pwr::DataHandleProvider::addStream(m_stream);
        writer.messages
            .clear(); // the announcement of whatever the process made before says nothing of the test
    }
    ~TableCapture() { pwr::WriterStreamHost::destroy(m_stream); }
    TableCapture(const TableCapture&) = delete;
    TableCapture& operator=(const TableCapture&) = delete;

    WriterStream& stream() { return *m_stream; }
    const std::vector<TableText>& tables() const { return writer.tables; }
    /// All tables as text, an empty line behind each.
    std::string text() const {
        std::string all;
        for (const TableText& table : writer.tables) {
            all += table.text() + "\n";
        }
        return all;
    }

    CapturingWriter writer;

private:
    std::set<WriterPlugin*> m_plugins;
    WriterStream* m_stream;
};

} // namespace tests
