#include "plugins/writers/text/report.h"

#include "common/config/writer_interface_configfile_parser.h"
#include "common/writer/table_message.h"
#include "common/writer/writer_message.h"
#include "plugins/writers/text/system_facts.h"

#include <algorithm>
#include <deque>
#include <utility>

namespace text_writer {

namespace {

constexpr std::size_t g_factNameWidth = 11;

/// The places of names: those of the configured order first, then others as they come.
class Ranks {
public:
    explicit Ranks(std::deque<std::string> order = {}) : m_names(std::move(order)) {}

    std::size_t of(const std::string& name) {
        const auto found = std::find(m_names.begin(), m_names.end(), name);
        const auto rank = static_cast<std::size_t>(found - m_names.begin());
        if (found == m_names.end()) {
            m_names.push_back(name);
        }
        return rank;
    }

private:
    std::deque<std::string> m_names;
};

Ranks featureRanks() {
    std::deque<std::string> order;
    if (const auto* parser = pwr::WriterInterfaceConfigFileParser::current()) {
        parser->getFeatureOrder(order);
    }
    return Ranks(std::move(order));
}

Ranks containerRanks(const std::string& featureTag) {
    std::deque<std::string> order;
    if (const auto* parser = pwr::WriterInterfaceConfigFileParser::current()) {
        parser->getMetricOrderForFeature(order, featureTag);
    }
    return Ranks(std::move(order));
}

/// Writes the parts of a report one below the other.
class Page {
public:
    Page(std::size_t lineWidth, bool color) : m_lineWidth(lineWidth), m_color(color) {}

    void space() {
        if (!m_text.empty()) {
            m_text += "\n";
        }
    }
    void heading(const std::string& text) {
        m_text += (m_color ? "\033[1m" + text + "\033[0m" : text) + "\n";
    }
    void underlinedHeading(const std::string& text) {
        space();
        heading(text);
        m_text += std::string(displayWidth(text), '=') + "\n";
    }
    void block(const std::string& text) { m_text += text; }
    void paragraph(const std::string& text) {
        for (const std::string& line : wrapText(text, m_lineWidth)) {
            m_text += line + "\n";
        }
    }
    void paragraphs(const std::vector<std::string>& texts) {
        for (const std::string& text : texts) {
            space();
            paragraph(text);
        }
    }
    void table(const TextTable& table) {
        space();
        heading(table.title);
        paragraphs(table.preNotes);
        space();
        for (const std::string& fact : table.facts) {
            paragraph(fact);
        }
        if (!table.facts.empty()) {
            space();
        }
        block(layOutColumns(table, m_lineWidth));
        paragraphs(table.postNotes);
    }
    /// Short texts of the host, one below the other.
    void texts(const std::vector<std::string>& texts) {
        if (!texts.empty()) {
            space();
        }
        for (const std::string& text : texts) {
            paragraph(text);
        }
    }
    const std::string& text() const { return m_text; }

private:
    std::string m_text;
    std::size_t m_lineWidth;
    bool m_color;
};

void writeFacts(Page& page, const pwr::SystemMetadata& system) {
    page.underlinedHeading("Collection");
    for (const auto& [name, value] : systemFacts(system)) {
        page.block(name + std::string(g_factNameWidth - name.size(), ' ') + value + "\n");
    }
}

} // namespace

void Report::addText(const pwr::TextMessage& message) {
    std::string text = message.getMessage();
    while (!text.empty() && text.back() == '\n') {
        text.pop_back();
    }
    if (message.getMessageType() == pwr::MessageType::HEADER_TEXT) {
        text = "\n" + text + "\n" + std::string(widestLine_i(text), '-');
    }
    (m_tables.empty() ? m_openingTexts : m_closingTexts).push_back(text);
}

std::size_t Report::widestLine_i(const std::string& text) {
    std::size_t width = 0;
    for (const std::string& line : wrapText(text, text.size())) {
        width = std::max(width, displayWidth(line));
    }
    return width;
}

void Report::addContainer(const pwr::MetricContainerInfoMessage& message) {
    // Several messages may tell of one container, each of them of something else.
    Container& container = m_containers[message.getMetricContainerId()];
    const auto keep = [](std::string& kept, const std::string& text) { kept = text.empty() ? kept : text; };
    keep(container.featureTag, message.getMetricFeatureTag());
    keep(container.containerTag, message.getMetricContainerTag());
    keep(container.banner, message.getContainerHeader());
    if (message.getTextInfo() != nullptr) {
        message.getTextInfo()->getPreTableNotes(container.preNotes);
        message.getTextInfo()->getPostTableNotes(container.postNotes);
    }
    if (message.getStaticTableRowInfo() != nullptr) {
        addTable(*message.getStaticTableRowInfo());
    }
}

void Report::addTable(const pwr::TableMessage& table) {
    m_tables.push_back(
        {table.getFeatureTag(), table.getContainerTag(), table.getMetricContainerId(), TextTable(table)});
    Entry& entry = m_tables.back();
    const auto found = m_containers.find(entry.containerId);
    if (entry.featureTag.empty() && found != m_containers.end()) {
        entry.featureTag = found->second.featureTag;
        entry.containerTag = found->second.containerTag;
    }
}

bool Report::isEmpty() const {
    return m_system == nullptr && m_tables.empty() && m_openingTexts.empty() && m_closingTexts.empty();
}

std::vector<const Report::Entry*> Report::orderedTables_i() const {
    struct Place {
        std::size_t feature;
        std::size_t container;
        const Entry* entry;
    };
    Ranks features = featureRanks();
    std::map<std::string, Ranks> containers;
    std::vector<Place> places;
    for (const Entry& entry : m_tables) {
        auto ranks = containers.find(entry.featureTag);
        if (ranks == containers.end()) {
            ranks = containers.emplace(entry.featureTag, containerRanks(entry.featureTag)).first;
        }
        places.push_back({features.of(entry.featureTag), ranks->second.of(entry.containerTag), &entry});
    }
    std::stable_sort(places.begin(), places.end(), [](const Place& a, const Place& b) {
        return std::make_pair(a.feature, a.container) < std::make_pair(b.feature, b.container);
    });
    std::vector<const Entry*> ordered;
    ordered.reserve(places.size());
    for (const Place& place : places) {
        ordered.push_back(place.entry);
    }
    return ordered;
}

const Report::Container* Report::containerOf_i(const Entry& entry) const {
    const auto found = m_containers.find(entry.containerId);
    return found != m_containers.end() && found->second.containerTag == entry.containerTag ? &found->second
                                                                                           : nullptr;
}

std::string Report::compose(std::size_t lineWidth, bool color) const {
    Page page(lineWidth, color);
    if (m_system != nullptr) {
        writeFacts(page, *m_system);
    }
    page.texts(m_openingTexts);
    const Entry* previous = nullptr;
    const std::vector<const Entry*> tables = orderedTables_i();
    for (std::size_t i = 0; i < tables.size(); ++i) {
        const Entry& entry = *tables[i];
        if (!entry.featureTag.empty() && (previous == nullptr || previous->featureTag != entry.featureTag)) {
            page.underlinedHeading(entry.featureTag);
        }
        const Container* container = containerOf_i(entry);
        const bool isFirst = previous == nullptr || previous->containerId != entry.containerId;
        const bool isLast = i + 1 == tables.size() || tables[i + 1]->containerId != entry.containerId;
        if (container != nullptr && isFirst) {
            if (!container->banner.empty()) {
                page.space();
                page.block(container->banner + "\n");
            }
            page.paragraphs(container->preNotes);
        }
        page.table(entry.table);
        if (container != nullptr && isLast) {
            page.paragraphs(container->postNotes);
        }
        previous = &entry;
    }
    page.texts(m_closingTexts);
    return page.text();
}

} // namespace text_writer
