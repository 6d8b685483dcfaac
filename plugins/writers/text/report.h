#pragma once

#include "plugins/writers/text/text_table.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace pwr {
class MetricContainerInfoMessage;
class SystemMetadata;
class TableMessage;
class TextMessage;
} // namespace pwr

namespace text_writer {

/// Everything that one report says, collected as it arrives and put in order at the end: containers finish in the
/// order in which they were made, but features and containers stand in the order of the output configuration,
/// what it does not name behind that in order of arrival.
class Report {
public:
    /// The record is read when the report is composed, because its end time is not known before. Not owned.
    void setSystem(const pwr::SystemMetadata* metadata) { m_system = metadata; }
    void addText(const pwr::TextMessage& message);
    void addContainer(const pwr::MetricContainerInfoMessage& message);
    void addTable(const pwr::TableMessage& table);

    bool isEmpty() const;

    /// The whole text. Colour marks headings for a terminal.
    std::string compose(std::size_t lineWidth, bool color) const;

private:
    struct Container {
        std::string featureTag;
        std::string containerTag;
        std::string banner;
        std::vector<std::string> preNotes;
        std::vector<std::string> postNotes;
    };
    struct Entry {
        std::string featureTag;
        std::string containerTag;
        std::uint32_t containerId;
        TextTable table;
    };

    std::vector<const Entry*> orderedTables_i() const;
    const Container* containerOf_i(const Entry& entry) const;
    static std::size_t widestLine_i(const std::string& text);

    const pwr::SystemMetadata* m_system = nullptr;
    std::vector<std::string> m_openingTexts; ///< those that arrived before the first table
    std::vector<std::string> m_closingTexts;
    std::map<std::uint32_t, Container> m_containers;
    std::vector<Entry> m_tables;
};

} // namespace text_writer
