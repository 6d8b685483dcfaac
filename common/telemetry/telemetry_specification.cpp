#include "common/telemetry/telemetry_specification.h"

#include "common/pw_utils.h"

#include <pugixml.hpp>

namespace pwr {

namespace {

constexpr const char* AGGREGATOR = "TELEM:Aggregator";
constexpr const char* SAMPLE_GROUP = "TELEM:SampleGroup";
constexpr const char* SAMPLE = "TELC:sample";
constexpr const char* SUB_GROUP = "TELC:sampleSubGroup";
constexpr std::string_view LSB = "TELC:lsb";
constexpr std::string_view MSB = "TELC:msb";

// Only what the index needs: no comments, declarations or processing instructions become nodes.
constexpr unsigned PARSING = pugi::parse_minimal | pugi::parse_escapes | pugi::parse_wconv_attribute;

// A file that is wrong throughout shall not fill the memory with complaints.
constexpr std::size_t MAX_PROBLEMS = 20;
constexpr std::size_t MAX_SHOWN_NAME = 80;

int readNumber(const char* text, pw_u16_t& number) {
    std::string_view trimmed = text;
    const std::size_t first = trimmed.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos) {
        return -1;
    }
    trimmed = trimmed.substr(first, trimmed.find_last_not_of(" \t\r\n") - first + 1);
    return extract_number_i(std::string(trimmed), number);
}

} // namespace

/// Visits the samples of all groups of all aggregators, wherever these are in the document, without recursion: how
/// deep elements are nested is up to the file.
class TelemetrySpecification::Walk {
public:
    explicit Walk(TelemetrySpecification& specification) : m_specification(specification) {}

    void document(const pugi::xml_node& root) {
        pugi::xml_node node = root.first_child();
        while (node) {
            if (std::string_view(node.name()) == AGGREGATOR) {
                aggregator_i(node);
            }
            node = next_i(node, root);
        }
    }

private:
    static pugi::xml_node next_i(pugi::xml_node node, const pugi::xml_node& root) {
        if (node.first_child()) {
            return node.first_child();
        }
        while (node != root && !node.next_sibling()) {
            node = node.parent();
        }
        return node == root ? pugi::xml_node() : node.next_sibling();
    }

    void aggregator_i(const pugi::xml_node& aggregator) {
        for (const pugi::xml_node& group : aggregator.children(SAMPLE_GROUP)) {
            for (const pugi::xml_node& sample : group.children(SAMPLE)) {
                sample_i(sample);
            }
        }
    }

    void sample_i(const pugi::xml_node& sample) {
        const char* const name = sample.attribute("name").value();
        pw_u16_t id = 0;
        if (*name == '\0' || readNumber(sample.attribute("sampleID").value(), id) != 0) {
            problem_i(sample, "needs a name and a sampleID from 0 to 65535");
            return;
        }
        const auto number = static_cast<std::uint32_t>(m_specification.m_samples.size());
        if (!m_specification.m_samples.add(0, name, {id, number})) {
            return;
        }
        for (const pugi::xml_node& field : sample.children(SUB_GROUP)) {
            field_i(field, number);
        }
    }

    void field_i(const pugi::xml_node& field, std::uint32_t sample) {
        BitRange range;
        int lsb = -1;
        int msb = -1;
        for (const pugi::xml_node& child : field.children()) {
            const std::string_view name = child.name();
            if (name == LSB) {
                lsb = readNumber(child.child_value(), range.lsb);
            } else if (name == MSB) {
                msb = readNumber(child.child_value(), range.msb);
            }
        }
        const char* const name = field.attribute("name").value();
        if (*name == '\0' || lsb != 0 || msb != 0) {
            problem_i(field, "needs a name, a lowest and a highest bit");
            return;
        }
        m_specification.m_fields.add(sample, name, range);
    }

    void problem_i(const pugi::xml_node& node, const char* what) {
        if (m_specification.m_problems.size() < MAX_PROBLEMS) {
            const std::string_view name = node.attribute("name").value();
            m_specification.m_problems.push_back(std::string(node.name()) + " \"" +
                                                 std::string(name.substr(0, MAX_SHOWN_NAME)) + "\" at byte " +
                                                 std::to_string(node.offset_debug()) + " " + what);
        }
    }

    TelemetrySpecification& m_specification;
};

int TelemetrySpecification::parse(std::span<char> text) {
    *this = TelemetrySpecification();
    pugi::xml_document document;
    if (!document.load_buffer_inplace(text.data(), text.size(), PARSING)) {
        return 1;
    }
    Walk(*this).document(document);
    return 0;
}

bool TelemetrySpecification::findSample(std::string_view sample, pw_u16_t& id) const {
    const Sample* const found = m_samples.find(0, sample);
    if (found == nullptr) {
        return false;
    }
    id = found->id;
    return true;
}

bool TelemetrySpecification::findField(std::string_view sample, std::string_view field,
                                       BitRange& range) const {
    const Sample* const owner = m_samples.find(0, sample);
    const BitRange* const found = owner == nullptr ? nullptr : m_fields.find(owner->number, field);
    if (found == nullptr) {
        return false;
    }
    range = *found;
    return true;
}

} // namespace pwr
