#include "tarnwell/host_environment.h"

#include "common/model/data_handle_provider.h"
#include "common/plugin/plugin_environment.h"
#include "common/tw_clock.h"
#include "common/writer/writer_plugin.h"
#include "common/writer/writer_stream.h"
#include "common/writer/writer_stream_host.h"

namespace tarnwell {

HostEnvironment::HostEnvironment(const std::string& resultPrefix) {
    PluginEnvironment& environment = *g_pluginEnvironment;
    environment.setErrorLogger(&m_errors);
    environment.setDebugLogger(&m_errors);
    environment.setNullLogger(&m_discard);
    environment.setDataOutputHandle(&m_output);
    environment.setVerbosity(pwr::PWLogLevel::WARNING);
    environment.setTarnwellDirectory();
    environment.setResultFilePrefix(resultPrefix);
}

void HostEnvironment::useClock(pwr::TWClockSource& clock) {
    const float frequency = clock.getFrequency();
    g_pluginEnvironment->setDefaultClock(&clock);
    g_pluginEnvironment->setDefaultClockToTSCRatio(frequency, frequency);
}

HostEnvironment::~HostEnvironment() {
    closeStream();
    PluginEnvironment& environment = *g_pluginEnvironment;
    environment.setDefaultClock(nullptr);
    environment.setErrorLogger(nullptr);
    environment.setDebugLogger(nullptr);
    environment.setNullLogger(nullptr);
    environment.setDataOutputHandle(nullptr);
}

const std::string& HostEnvironment::folder() const {
    return g_pluginEnvironment->getTarnwellDirectory();
}

void HostEnvironment::openStream(std::set<WriterPlugin*>& writers) {
    m_stream = pwr::WriterStreamHost::create(writers);
    for (const WriterPlugin* writer : writers) {
        for (const pwr::TableClass tableClass : writer->getTableClasses()) {
            pwr::WriterStreamHost::addSupportedTableClass(*m_stream, tableClass);
        }
    }
    g_pluginEnvironment->setWriterStream(m_stream);
    pwr::DataHandleProvider::addStream(m_stream);
}

void HostEnvironment::closeStream() {
    pwr::WriterStreamHost::destroy(m_stream);
    m_stream = nullptr;
}

} // namespace tarnwell
