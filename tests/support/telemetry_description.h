#pragma once

#include "common/plugin/plugin_environment.h"
#include "common/telemetry/aggr_telem.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

namespace tests {

/// A specification file where the library looks for it, for as long as the object lives.
class SpecificationFile {
public:
    SpecificationFile(pw_u32_t guid, const std::string& text) {
        g_pluginEnvironment->setTarnwellDirectory();
        const std::filesystem::path folder =
            std::filesystem::path(g_pluginEnvironment->getTarnwellDirectory()) / "xml_configs";
        std::filesystem::create_directories(folder);
        char name[32];
        std::snprintf(name, sizeof(name), "telemetry_0x%x.xml", guid);
        m_path = folder / name;
        std::ofstream(m_path, std::ios::binary) << text;
    }
    SpecificationFile(const SpecificationFile&) = delete;
    SpecificationFile& operator=(const SpecificationFile&) = delete;
    ~SpecificationFile() {
        std::filesystem::remove(m_path);
        pwr::AggrTelemIndex::instance().clear();
    }

private:
    std::filesystem::path m_path;
};

inline std::string document(const std::string& samples) {
    return "<?xml version=\"1.0\"?>\n<root><TELEM:Aggregator><TELEM:SampleGroup name=\"g\">" + samples +
           "</TELEM:SampleGroup></TELEM:Aggregator></root>\n";
}

inline std::string sampleXml(const std::string& name, const std::string& id, const std::string& fields = {}) {
    return "<TELC:sample name=\"" + name + "\" sampleID=\"" + id + "\">" + fields + "</TELC:sample>";
}

inline std::string fieldXml(const std::string& name, const std::string& lsb, const std::string& msb) {
    return "<TELC:sampleSubGroup name=\"" + name + "\"><TELC:lsb>" + lsb + "</TELC:lsb><TELC:msb>" + msb +
           "</TELC:msb><x:lsb>9</x:lsb></TELC:sampleSubGroup>";
}

} // namespace tests
