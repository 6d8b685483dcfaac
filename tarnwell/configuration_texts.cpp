#include "tarnwell/configuration_texts.h"

#include "common/config/config_text_reader.h"
#include "common/pw_utils.h"
#include "tarnwell/complaints.h"

namespace tarnwell {

std::vector<std::string> shippedFiles(const std::string& libraryFolder, const std::string& kind,
                                      const std::string& consequence) {
    const std::string shipped = libraryFolder + "config/" + kind + "/*.cfg";
    std::vector<std::string> files = pwr::doGlob(shipped);
    if (files.empty()) {
        complain({"there is no " + shipped + ": " + consequence});
    }
    return files;
}

std::pair<std::string, std::string> namedText(const std::string& path) {
    std::string text;
    pwr::readConfigFileText(path, text);
    return {pwr::PathOps::getFilenameFromPath(pwr::PathOps::normalizePathSeparator(path)), std::move(text)};
}

} // namespace tarnwell
