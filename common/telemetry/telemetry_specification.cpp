#include "common/telemetry/telemetry_specification.h"

#include "common/pw_utils.h"

#include <cstring>

#include <pugixml.hpp>

namespace pwr {

namespace {

constexpr const char* AGGREGATOR = "TELEM:Aggregator";
constexpr const char* SAMPLE_GROUP = "TELEM:SampleGroup";
constexpr const char* SAMPLE = "TELC:sample";
constexpr const char* SUB_GROUP = "TELC:sampleSubGroup";
constexpr const char* LSB = "TELC:lsb";
constexpr const char* MSB = "TELC:msb";

// Only what the index needs: no comments, declarations or processing instructions become nodes, nor does the text of
// an element that has nothing else, which are three of four elements.
constexpr unsigned PARSING = pugi::parse_minimal | pugi::parse_escapes | pugi::parse_cdata |
                             pugi::parse_wconv_attribute | pugi::parse_embed_pcdata;

// About what a field takes in a file, with its description.
constexpr std::size_t BYTES_PER_FIELD = 256;

// A file that is wrong throughout shall not fill the memory with complaints.
constexpr std::size_t MAX_PROBLEMS = 20;
constexpr std::size_t MAX_SHOWN_NAME = 80;

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

/// A number with nothing but blanks around it. The plain form is read at once: there are two for each field.
int readNumber(const char* text, pw_u16_t& number) {
    while (isBlank(*text)) {
        ++text;
    }
    unsigned value = 0;
    const char* at = text;
    while (*at >= '0' && *at <= '9' && value <= UINT16_MAX) {
        value = 10 * value + static_cast<unsigned>(*at++ - '0');
    }
    if (*at == '\0' && at != text && value <= UINT16_MAX) {
        number = static_cast<pw_u16_t>(value);
        return 0;
    }
    std::string other = text;
    while (!other.empty() && isBlank(other.back())) {
        other.pop_back();
    }
    return extract_number_i(other, number);
}

} // namespace

/// Visits what the queries "//TELEM:Aggregator/TELEM:SampleGroup", "//TELEM:Aggregator/TELEM:SampleGroup/TELC:sample"
/// and "//TELEM:Aggregator/TELEM:SampleGroup/TELC:sample/TELC:sampleSubGroup" would select, in one walk that makes no
/// lists of nodes, and without recursion: how deep elements are nested is up to the file. Of what a sample group holds,
/// only its samples count.
class TelemetrySpecification::Walk {
public:
    explicit Walk(TelemetrySpecification& specification) : m_specification(specification) {}

    void document(const pugi::xml_node& root) {
        pugi::xml_node node = root.first_child();
        while (node) {
            if (std::strcmp(node.name(), AGGREGATOR) == 0) {
                aggregator_i(node);
            }
            node = next_i(node, root);
        }
    }

private:
    static pugi::xml_node next_i(pugi::xml_node node, const pugi::xml_node& root) {
        const bool isGroup = std::strcmp(node.name(), SAMPLE_GROUP) == 0;
        const pugi::xml_node child = isGroup ? pugi::xml_node() : node.first_child();
        if (child) {
            return child;
        }
        while (node != root && !node.next_sibling()) {
            node = node.parent();
        }
        return node == root ? pugi::xml_node() : node.next_sibling();
    }

    void aggregator_i(const pugi::xml_node& aggregator) {
        for (pugi::xml_node group = aggregator.child(SAMPLE_GROUP); group;
             group = group.next_sibling(SAMPLE_GROUP)) {
            for (pugi::xml_node sample = group.child(SAMPLE); sample; sample = sample.next_sibling(SAMPLE)) {
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
        m_specification.m_samples.add(0, name, {id, number});
        for (pugi::xml_node field = sample.child(SUB_GROUP); field; field = field.next_sibling(SUB_GROUP)) {
            field_i(field, number);
        }
    }

    void field_i(const pugi::xml_node& field, std::uint32_t sample) {
        BitRange range;
        const char* const name = field.attribute("name").value();
        if (*name == '\0' || readNumber(field.child_value(LSB), range.lsb) != 0 ||
            readNumber(field.child_value(MSB), range.msb) != 0) {
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
    m_fields.reserve(text.size() / BYTES_PER_FIELD);
    pugi::xml_document document;
    if (!document.load_buffer_inplace(text.data(), text.size(), PARSING)) {
        return 1;
    }
    Walk(*this).document(document);
    m_samples.seal();
    m_fields.seal();
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
