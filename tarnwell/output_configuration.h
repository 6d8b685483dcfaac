#pragma once

#include "tarnwell/configuration_texts.h"

#include <string>
#include <vector>

namespace tarnwell {

/// The process's output configuration for the length of one run: titles, order and visibility of the tables.
class OutputConfiguration {
public:
    OutputConfiguration() = default;
    OutputConfiguration(const OutputConfiguration&) = delete;
    OutputConfiguration& operator=(const OutputConfiguration&) = delete;
    ~OutputConfiguration();

    /// The given files or, when there are none, those shipped in @p libraryFolder, and @p more behind them. 0; or 1,
    /// and what is wrong has been said.
    int readFiles(const std::vector<std::string>& files, const std::string& libraryFolder,
                  const std::vector<std::string>& more);
    /// As they were saved with a collection, hardware descriptions left out; and @p more files behind them.
    int readTexts(const ConfigurationTexts& texts, const std::vector<std::string>& more);

    /// What was read, for saving.
    const ConfigurationTexts& texts() const { return m_texts; }

private:
    ConfigurationTexts m_texts;
};

} // namespace tarnwell
