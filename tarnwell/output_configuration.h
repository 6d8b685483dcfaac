#pragma once

#include <string>
#include <utility>
#include <vector>

namespace tarnwell {

/// Name and text of each file of an output configuration.
using ConfigurationTexts = std::vector<std::pair<std::string, std::string>>;

/// The process's output configuration for the length of one run: titles, order and visibility of the tables.
class OutputConfiguration {
public:
    OutputConfiguration() = default;
    OutputConfiguration(const OutputConfiguration&) = delete;
    OutputConfiguration& operator=(const OutputConfiguration&) = delete;
    ~OutputConfiguration();

    /// The given files or, when there are none, those shipped in @p libraryFolder. 0; or 1, and what is wrong has
    /// been said.
    int readFiles(const std::vector<std::string>& files, const std::string& libraryFolder);
    /// As they were saved with a collection.
    int readTexts(const ConfigurationTexts& texts);

    /// What was read, for saving.
    const ConfigurationTexts& texts() const { return m_texts; }

private:
    ConfigurationTexts m_texts;
};

} // namespace tarnwell
