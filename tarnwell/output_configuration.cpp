#include "tarnwell/output_configuration.h"

#include "common/config/writer_interface_configfile_parser.h"
#include "common/platform/file.h"
#include "common/pw_utils.h"
#include "tarnwell/complaints.h"

#include <fstream>
#include <iterator>

namespace tarnwell {

OutputConfiguration::~OutputConfiguration() {
    pwr::WriterInterfaceConfigFileParser::destroy();
}

int OutputConfiguration::readFiles(const std::vector<std::string>& files, const std::string& libraryFolder) {
    std::vector<std::string> used = files;
    if (used.empty()) {
        const std::string shipped = libraryFolder + "config/output/*.cfg";
        used = pwr::doGlob(shipped);
        if (used.empty()) {
            complain({"there is no " + shipped + ": tables have neither titles nor order"});
        }
    }
    for (const std::string& path : used) {
        std::ifstream file(pwr::platform::nativePath(path), std::ios::binary);
        m_texts.emplace_back(
            pwr::PathOps::getFilenameFromPath(pwr::PathOps::normalizePathSeparator(path)),
            std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()));
    }
    return pwr::WriterInterfaceConfigFileParser::instance()->parse(used);
}

int OutputConfiguration::readTexts(const ConfigurationTexts& texts) {
    m_texts = texts;
    int result = 0;
    for (const auto& [name, text] : texts) {
        result |= pwr::WriterInterfaceConfigFileParser::instance()->parseText(name, text);
    }
    return result;
}

} // namespace tarnwell
