#include "tarnwell/output_configuration.h"

#include "common/config/writer_interface_configfile_parser.h"

namespace tarnwell {

OutputConfiguration::~OutputConfiguration() {
    pwr::WriterInterfaceConfigFileParser::destroy();
}

int OutputConfiguration::readFiles(const std::vector<std::string>& files, const std::string& libraryFolder,
                                   const std::vector<std::string>& more) {
    std::vector<std::string> used = files;
    if (used.empty()) {
        used = shippedFiles(libraryFolder, "output", "tables have neither titles nor order");
    }
    used.insert(used.end(), more.begin(), more.end());
    for (const std::string& path : used) {
        m_texts.push_back(namedText(path));
    }
    return pwr::WriterInterfaceConfigFileParser::instance()->parse(used);
}

int OutputConfiguration::readTexts(const ConfigurationTexts& texts, const std::vector<std::string>& more) {
    int result = 0;
    for (const auto& [name, text] : texts) {
        if (!name.starts_with(kHardwareTextPrefix)) {
            m_texts.emplace_back(name, text);
            result |= pwr::WriterInterfaceConfigFileParser::instance()->parseText(name, text);
        }
    }
    return result | (more.empty() ? 0 : pwr::WriterInterfaceConfigFileParser::instance()->parse(more));
}

} // namespace tarnwell
