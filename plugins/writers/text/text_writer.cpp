#include "common/plugin/logger.h"
#include "common/plugin/plugin_environment.h"
#include "common/plugin/plugin_loader.h"
#include "common/result_file.h"
#include "common/values/data.h"
#include "common/writer/table_message.h"
#include "common/writer/writer_message.h"
#include "common/writer/writer_plugin.h"
#include "plugins/writers/text/report.h"

#include <charconv>
#include <memory>
#include <string>

namespace text_writer {

/// Writes one report for people: to the environment's data output handle and, when a result-file prefix is set,
/// to PREFIX.txt. Everything is written at the flush, in the order of the output configuration.
/// Options:  "color" ("1" or "0", off at first): headings in bold on the output handle, never in the file.
///           "width" (40 and more, 80 at first): columns of the page.
/// The system record of a SystemMessage must live until the flush.
class TextWriter : public WriterPlugin {
public:
    TextWriter() : WriterPlugin("text") {
        auto capability = std::make_unique<PluginCapability>("text", "aligned tables for reading");
        capability->addGroup("table-class:summary");
        capability->addGroup("table-class:static-info");
        if (addCapability(capability.get()) == 0) {
            static_cast<void>(capability.release()); // the base owns it now
        }
    }

    const char* getDescription() const override { return "prints the results as aligned tables"; }

    int setOption(const std::string& key, const std::string& value) override {
        if (key == "color" && (value == "0" || value == "1")) {
            m_color = value == "1";
            return 0;
        }
        if (key == "width") {
            std::size_t width = 0;
            const char* const end = value.data() + value.size();
            const auto read = std::from_chars(value.data(), end, width);
            if (read.ec == std::errc() && read.ptr == end && width >= c_minimumWidth) {
                m_width = width;
                return 0;
            }
        }
        return 1;
    }

    int flushResults() override {
        if (m_report.isEmpty()) {
            return 0;
        }
        const int printed = print_i();
        const int written = writeFile_i();
        m_report = Report();
        return printed != 0 || written != 0 ? 1 : 0;
    }

private:
    static constexpr std::size_t c_minimumWidth = 40;

    int writeMessage(const pwr::SystemMessage& message) override {
        m_report.setSystem(message.getSystemMetadata());
        return 0;
    }
    int writeMessage(const pwr::TextMessage& message) override {
        m_report.addText(message);
        return 0;
    }
    int writeMessage(const pwr::MetricContainerInfoMessage& message) override {
        m_report.addContainer(message);
        return 0;
    }
    int writeMessage(const pwr::TableMessage& table) override {
        m_report.addTable(table);
        return 0;
    }

    int print_i() const {
        pwr::Logger* output = g_pluginEnvironment->getDataOutputHandle();
        if (output == nullptr) {
            return 0;
        }
        *output << m_report.compose(m_width, m_color);
        output->flush();
        if (output->fail()) {
            pwr::logError("ERROR: Cannot write the report to the output\n");
            return 1;
        }
        return 0;
    }

    int writeFile_i() const {
        const std::string& prefix = g_pluginEnvironment->getResultFilePrefix();
        if (prefix.empty()) {
            return 0;
        }
        std::string error;
        if (pwr::ResultFile::writeWhole(prefix + ".txt", m_report.compose(m_width, false), error) != 0) {
            pwr::logError("ERROR: Cannot write the report %s\n", error.c_str());
            return 1;
        }
        return 0;
    }

    Report m_report;
    std::size_t m_width = 80;
    bool m_color = false;
};

} // namespace text_writer

KRCOMMON_PLUGIN("text", KR_PLUGIN_WRITER, text_writer::TextWriter);
