#pragma once

#include "common/plugin/plugin_environment.h"
#include "common/telemetry/aggr_telem.h"
#include "tests/support/telemetry_text.h"

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

} // namespace tests
