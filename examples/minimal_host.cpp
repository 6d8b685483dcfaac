// The smallest host: one container, three samples, one table on standard output.
#include "common/config/writer_interface_configfile_parser.h"
#include "common/metadata/system_metadata.h"
#include "common/metrics/metric.h"
#include "common/model/data_handle_provider.h"
#include "common/model/entity_handle.h"
#include "common/plugin/plugin_environment.h"
#include "common/writer/table_message.h"
#include "common/writer/writer_plugin.h"
#include "common/writer/writer_stream_host.h"

#include <iostream>

class PrintingWriter : public WriterPlugin {
public:
    PrintingWriter() : WriterPlugin("printer") {}
    const char* getDescription() const override { return "prints tables"; }
    int flushResults() override { return 0; }

private:
    int writeMessage(const pwr::TableMessage& table) override {
        std::deque<std::string> titles, values;
        getColumnTitles(table, titles);
        getRowValues(table, values);
        std::cout << table.getTitle() << '\n';
        for (std::size_t i = 0; i < values.size(); ++i) {
            std::cout << "  " << titles[i % titles.size()] << ": " << values[i] << '\n';
        }
        return 0;
    }
};

int main() {
    PrintingWriter writer;
    std::set<WriterPlugin*> writers = {&writer};
    WriterStream* stream = pwr::WriterStreamHost::create(writers);
    g_pluginEnvironment->setWriterStream(stream);
    pwr::DataHandleProvider::addStream(stream);
    pwr::WriterInterfaceConfigFileParser::instance();
    {
        pwr::SystemMetadata system;
        system.startTSC = 1000;
        system.twaClockFreq = 1000.0F; // ticks are nanoseconds
        pwr::Metric fan("Fan speed", pwr::Metric::MetricType::SampledValue, "FAN", "cooling", system,
                        nullptr);
        pwr::DataElement sample(pwr::EntityHandle::create("Front fan", nullptr), nullptr);
        const std::uint64_t rpm[] = {1200, 1500, 1350};
        for (std::uint64_t i = 0; i < 3; ++i) {
            sample.setValue(pwr::Data(rpm[i]));
            fan.setData(1000 + (i + 1) * 1000000, sample, 0);
        }
        fan.finalize();
    }
    pwr::WriterInterfaceConfigFileParser::destroy();
    pwr::WriterStreamHost::destroy(stream);
    return 0;
}
