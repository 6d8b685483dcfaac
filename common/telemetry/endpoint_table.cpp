#include "common/telemetry/endpoint_table.h"

#include <algorithm>
#include <array>
#include <limits>
#include <set>

#include "common/pw_utils.h"

namespace pwr {

namespace {

constexpr std::string_view BLANKS = " \t\r";
constexpr pw_u32_t SAMPLE_SIZE = 8;

enum Column : std::size_t { ID, GUID, COLLECTION_TYPE, FILE_NAME, OFFSET, SIZE, SAMPLES, COLUMNS };
constexpr std::array<const char*, COLUMNS> COLUMN_NAMES{
    "the endpoint's id", "the GUID", "the collection type",  "the file",
    "the offset",        "the size", "the number of samples"};

std::vector<std::string> wordsOf(std::string_view line) {
    line = line.substr(0, line.find('#'));
    std::vector<std::string> words;
    for (;;) {
        line.remove_prefix(std::min(line.find_first_not_of(BLANKS), line.size()));
        if (line.empty()) {
            return words;
        }
        const std::size_t end = std::min(line.find_first_of(BLANKS), line.size());
        words.emplace_back(line.substr(0, end));
        line.remove_prefix(end);
    }
}

/// Reads the words of one line. "" or what is wrong.
class EndpointLine {
public:
    explicit EndpointLine(const std::vector<std::string>& words) : m_words(words) {}

    std::string read(TelemetryEndpoint& endpoint) {
        if (m_words.size() != COLUMNS) {
            return "expected " + std::to_string(COLUMNS) +
                   " words: id, GUID, collection type, file, offset, size, number of samples; got " +
                   std::to_string(m_words.size());
        }
        // The record is packed: its numbers are read into ones of their own first.
        endpoint.info.endpoint_id = number_i<pw_u16_t>(ID);
        endpoint.info.guid = number_i<pw_u32_t>(GUID);
        endpoint.info.collection_type = number_i<pw_u16_t>(COLLECTION_TYPE);
        endpoint.info.address = number_i<pw_u64_t>(OFFSET);
        endpoint.info.size = number_i<pw_u32_t>(SIZE);
        endpoint.info.sample_count = number_i<pw_u16_t>(SAMPLES);
        endpoint.file = m_words[FILE_NAME];
        if (m_problem.empty() && !endpoint.file.starts_with('/')) {
            m_problem = "the file must start with \"/\", got \"" + endpoint.file + "\"";
        }
        if (m_problem.empty() && pw_u32_t{endpoint.info.sample_count} * SAMPLE_SIZE > endpoint.info.size) {
            m_problem = m_words[SAMPLES] + " samples of 8 bytes do not fit into " + m_words[SIZE] + " bytes";
        }
        if (m_problem.empty() &&
            endpoint.info.address > std::numeric_limits<pw_u64_t>::max() - endpoint.info.size) {
            m_problem = "the offset " + m_words[OFFSET] + " is beyond the end of any file";
        }
        return m_problem;
    }

private:
    template <class Number> Number number_i(Column column) {
        Number number = 0;
        if (extract_number_i(m_words[column], number) != 0 && m_problem.empty()) {
            m_problem = std::string(COLUMN_NAMES[column]) + " must be a number from 0 to " +
                        std::to_string(std::numeric_limits<Number>::max()) + ", got \"" + m_words[column] +
                        "\"";
        }
        return number;
    }

    const std::vector<std::string>& m_words;
    std::string m_problem;
};

} // namespace

std::vector<TelemetryEndpoint> readEndpointTable(const std::string& name, std::string_view text,
                                                 std::vector<std::string>& problems) {
    std::vector<TelemetryEndpoint> endpoints;
    std::set<pw_u16_t> ids;
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::vector<std::string> words = wordsOf(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (words.empty()) {
            continue;
        }
        TelemetryEndpoint endpoint;
        std::string problem = EndpointLine(words).read(endpoint);
        if (problem.empty() && !ids.insert(endpoint.info.endpoint_id).second) {
            problem = "endpoint " + words[ID] + " stands in an earlier line already";
        }
        if (problem.empty()) {
            endpoints.push_back(std::move(endpoint));
        } else {
            problems.push_back(name + ":" + std::to_string(number) + ": " + problem);
        }
    }
    return endpoints;
}

} // namespace pwr
