#include "common/writer/writer_stream_host.h"

#include "common/model/data_handle_provider.h"
#include "common/plugin/plugin_environment.h"
#include "common/writer/writer_stream.h"

namespace pwr {

WriterStream* WriterStreamHost::create(std::set<WriterPlugin*>& plugins) {
    return new WriterStream(&plugins);
}

void WriterStreamHost::destroy(WriterStream* stream) {
    if (stream == nullptr) {
        return;
    }
    if (g_pluginEnvironment->getWriterStream() == stream) {
        g_pluginEnvironment->setWriterStream(nullptr);
    }
    DataHandleProvider::removeStream(stream);
    delete stream;
}

int WriterStreamHost::flush(WriterStream& stream) {
    return stream.flush();
}

int WriterStreamHost::addSupportedTableClass(WriterStream& stream, TableClass tableClass) {
    stream.m_tableClasses.insert(tableClass);
    return 0;
}

} // namespace pwr
