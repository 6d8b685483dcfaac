#include "common/telemetry/aggr_telem.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "common/metadata/operation_metadata.h"
#include "common/plugin/logger.h"
#include "common/plugin/plugin_environment.h"
#include "common/pw_utils.h"

namespace pwr {

namespace {

constexpr pw_u16_t SAMPLE_BITS = 64;
constexpr std::string_view NAME_KEY = "COUNTER-NAME=";

std::string trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    return first == std::string_view::npos
               ? std::string()
               : std::string(text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1));
}

/// Resolves one operation, step by step; a step that fails has said why.
class CounterResolver {
public:
    CounterResolver(const std::string& name, const OperationMetadata& operation)
        : m_name(name), m_operation(operation) {}

    int resolve(AggrTelemCounterInfo& info) {
        if (readKeys_i() != 0 || findGuid_i() != 0) {
            return 1;
        }
        locate_i();
        if (findEndpoint_i() != 0 || checkPlace_i() != 0 || findBits_i() != 0) {
            return 1;
        }
        info = m_info;
        return 0;
    }

private:
    std::string valueOf_i(const char* key) const {
        const auto& values = m_operation.getValues();
        const auto found =
            std::find_if(values.begin(), values.end(), [key](const auto& pair) { return pair.first == key; });
        return found == values.end() ? std::string() : trimmed(found->second);
    }

    template <class Number> int numberOf_i(const char* key, std::optional<Number>& number) const {
        const std::string text = valueOf_i(key);
        if (text.empty()) {
            return 0;
        }
        Number value = 0;
        if (extract_number_i(text, value) != 0) {
            return malformed_i();
        }
        number = value;
        return 0;
    }

    int malformed_i() const {
        logWarning("WARNING: %s: Malformed operation metadata!\n", m_name.c_str());
        return 1;
    }

    /// The key is there, but what it holds names nothing.
    bool isNameless_i() const {
        const auto& values = m_operation.getValues();
        return m_info.counterName.empty() && std::any_of(values.begin(), values.end(), [](const auto& pair) {
                   return pair.first == "COUNTER-NAME";
               });
    }

    int readKeys_i() {
        if (numberOf_i("GUID", m_guid) != 0 || numberOf_i("ENDPOINT-ID", m_endpoint) != 0 ||
            numberOf_i("SAMPLE-ID", m_sample) != 0) {
            return 1;
        }
        m_info.counterName = getCounterNameFromInitValue(valueOf_i("COUNTER-NAME"));
        m_info.fieldName = valueOf_i("COUNTER-FIELD-NAME");
        if (isNameless_i()) {
            logWarning("WARNING: %s: Unable to extract counter name from operation!\n", m_name.c_str());
            return 1;
        }
        if (m_info.counterName.empty() && !m_sample) {
            logError("ERROR: Either counter name or sample id are required to collect Telemetry Aggregation "
                     "Facility "
                     "metrics.\n");
            return 1;
        }
        const std::string format = valueOf_i("DATA-FORMAT");
        m_info.format = format.empty() ? tw_qformat() : retrieveQFormat(format);
        return 0;
    }

    /// The GUID that the machine has where another one's file describes its counters.
    static pw_u32_t realGuidOf_i(pw_u32_t described) {
        const std::set<pw_u32_t> loaded = g_pluginEnvironment->getLoadedTAFGUIDs();
        const auto real = std::find_if(loaded.begin(), loaded.end(), [described](pw_u32_t guid) {
            return g_pluginEnvironment->getTAFEmulatedGUID(guid) == described;
        });
        return loaded.count(described) > 0 || real == loaded.end() ? described : *real;
    }

    /// The first loaded GUID of the platform that the key IP-NAME names.
    std::optional<pw_u32_t> guidOfPlatform_i() const {
        const std::string platform = valueOf_i("IP-NAME");
        if (platform.empty()) {
            return {}; // the registry would take it for the generic name of any platform
        }
        const std::set<pw_u32_t> loaded = g_pluginEnvironment->getLoadedTAFGUIDs();
        const std::vector<pw_u32_t> guids = g_pluginEnvironment->getTAFPlatformGUIDs(platform);
        const auto found =
            std::find_if(guids.begin(), guids.end(), [&](pw_u32_t guid) { return loaded.count(guid) > 0; });
        return found == guids.end() ? std::optional<pw_u32_t>() : *found;
    }

    /// By its key, else by the platform, else by the endpoint, else by the file that has the counter.
    int findGuid_i() {
        pw_u32_t guid = 0;
        if (!m_guid) {
            m_guid = guidOfPlatform_i();
        }
        if (!m_guid && m_endpoint) {
            guid = g_pluginEnvironment->getTAFPlatformGUID(*m_endpoint);
            m_guid = guid == 0 ? m_guid : guid;
        }
        if (!m_guid && AggrTelemIndex::instance().findGuidOf(m_info.counterName, guid)) {
            m_guid = realGuidOf_i(guid);
        }
        if (!m_guid) {
            return m_info.counterName.empty() ? malformed_i() : missing_i(m_info.counterName);
        }
        m_info.guid = *m_guid;
        return 0;
    }

    int missing_i(const std::string& counter) const {
        logWarning("WARNING: Could not locate TAF counter '%s' in XML files\n", counter.c_str());
        return 1;
    }

    int findEndpoint_i() {
        m_endpoints = g_pluginEnvironment->getLoadedTAFEndpoints(m_info.guid);
        if (!m_endpoint && m_endpoints.empty()) {
            logWarning("WARNING: Unable to resolve Endpoint ID for operation: %s!\n", m_name.c_str());
            return 1;
        }
        m_info.endpointId = m_endpoint ? *m_endpoint : m_endpoints.front().endpoint_id;
        return 0;
    }

    /// Where the sample is must be known by now, and the machine must have that endpoint.
    int checkPlace_i() {
        if (!m_sample) {
            logWarning("WARNING: Unable to resolve SampleID for operation: %s!\n", m_name.c_str());
            return 1;
        }
        m_info.sampleId = *m_sample;
        const bool isLoaded =
            std::any_of(m_endpoints.begin(), m_endpoints.end(),
                        [this](const auto& endpoint) { return endpoint.endpoint_id == m_info.endpointId; });
        if (!isLoaded) {
            logWarning("WARNING: Endpoint for message not found in loaded endpoints!\n");
            return 1;
        }
        return 0;
    }

    /// The GUID whose file describes the counters: an emulated one stands for the real one.
    pw_u32_t describedGuid_i() const {
        const pw_u32_t emulated = g_pluginEnvironment->getTAFEmulatedGUID(m_info.guid);
        return emulated == 0 ? m_info.guid : emulated;
    }

    /// Looks the counter up in its file, unless the keys tell all. Says so when it is not there, but what else is
    /// wrong with the operation is told as well.
    void locate_i() {
        const bool isField = !m_info.fieldName.empty() && valueOf_i("BIT-RANGE").empty();
        if (m_info.counterName.empty() || (m_sample && !isField)) {
            return;
        }
        AggrTelemIndex& index = AggrTelemIndex::instance();
        const pw_u32_t guid = describedGuid_i();
        if ((!index.isLoaded(guid) && index.load(guid) != 0) || m_sample) {
            return;
        }
        pw_u16_t sample = 0;
        if (index.findSample(guid, m_info.counterName, sample)) {
            m_sample = sample;
        } else {
            missing_i(m_info.counterName);
        }
    }

    int findBits_i() {
        const std::string range = valueOf_i("BIT-RANGE");
        if (!range.empty()) {
            const std::size_t comma = range.find(',');
            if (comma == std::string::npos ||
                extract_number_i(trimmed(range.substr(0, comma)), m_info.lsb) != 0 ||
                extract_number_i(trimmed(range.substr(comma + 1)), m_info.msb) != 0) {
                return malformed_i();
            }
        } else if (!m_info.fieldName.empty() &&
                   !AggrTelemIndex::instance().findField(describedGuid_i(), m_info.counterName,
                                                         m_info.fieldName, m_info.lsb, m_info.msb)) {
            return missing_i(m_info.counterName + "." + m_info.fieldName);
        }
        if (m_info.msb < m_info.lsb) {
            logError("ERROR: MSB:%hu is less than LSB:%hu for %s\n", m_info.msb, m_info.lsb, m_name.c_str());
            return 1;
        }
        return m_info.msb < SAMPLE_BITS ? 0 : malformed_i();
    }

    const std::string& m_name;
    const OperationMetadata& m_operation;
    std::optional<pw_u32_t> m_guid;
    std::optional<pw_u16_t> m_endpoint;
    std::optional<pw_u16_t> m_sample;
    std::vector<_tw_aggregator_info> m_endpoints; ///< of the GUID
    AggrTelemCounterInfo m_info;
};

} // namespace

pw_u64_t AggrTelemCounterInfo::bitsOf(pw_u64_t sample) const {
    const unsigned width = unsigned{msb} - lsb + 1U;
    const pw_u64_t bits = sample >> (lsb % SAMPLE_BITS);
    return width >= SAMPLE_BITS ? bits : bits & ((pw_u64_t{1} << width) - 1);
}

int parseAggrTelemOperationMetadata(const std::string& name, const OperationMetadata& operation,
                                    AggrTelemCounterInfo& info) {
    return CounterResolver(name, operation).resolve(info);
}

std::string getCounterNameFromInitValue(const std::string& value) {
    const std::size_t key = value.find(NAME_KEY);
    if (key == std::string::npos && value.find('=') != std::string::npos) {
        return {};
    }
    const std::size_t begin = key == std::string::npos ? 0 : key + NAME_KEY.size();
    return trimmed(std::string_view(value).substr(begin, value.find(',', begin) - begin));
}

} // namespace pwr
