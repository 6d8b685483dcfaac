#include "plugins/collectors/aggregator/counter.h"

#include <algorithm>
#include <bit>
#include <cstdio>
#include <utility>

#include "common/plugin/plugin_environment.h"
#include "common/pw_utils.h"

namespace aggregator {

namespace {

using collectors::complaint;
using collectors::keyOf;
using collectors::RawType;
using pwr::AggrTelemIndex;
using pwr::MsgMetadata;
using pwr::OperationMetadata;
using pwr::TelemetryEndpoint;

constexpr std::uint64_t SAMPLE_SIZE = 8;
constexpr unsigned SAMPLE_BITS = 64;

std::string hexOf(pw_u32_t number) {
    char text[16];
    std::snprintf(text, sizeof(text), "0x%x", static_cast<unsigned>(number));
    return text;
}

/// Finds one counter, step by step; a step that fails has said why.
class CounterFinder {
public:
    CounterFinder(const MsgMetadata& message, const OperationMetadata& operation,
                  const std::vector<TelemetryEndpoint>& endpoints, MessageInstances& out)
        : m_message(message), m_operation(operation), m_endpoints(endpoints), m_out(out) {}

    int find(const pwr::MachineFiles& machine, Counter& counter) {
        return resolve_i(counter) != 0 || findType_i(counter) != 0 || findWidth_i(counter) != 0 ||
                       findOwner_i(machine, counter) != 0
                   ? 1
                   : 0;
    }

private:
    std::string lead_i() const {
        return m_message.getMsgName() + ", operation " + m_operation.getName() + ": ";
    }
    int fail_i(const std::string& reason, const std::string& fix = {}) {
        m_out.reason = reason;
        m_out.fix = fix;
        return 1;
    }

    int resolve_i(Counter& counter) {
        if (pwr::parseAggrTelemOperationMetadata(m_operation.getName(), m_operation, counter.info) != 0) {
            return unresolved_i();
        }
        const pw_u32_t guid = counter.info.guid;
        const std::vector<pw_u32_t> deprecated = g_pluginEnvironment->getDeprecatedTAFGUIDs();
        if (describedGuid(guid) == guid &&
            std::find(deprecated.begin(), deprecated.end(), guid) != deprecated.end()) {
            return fail_i("telemetry GUID " + hexOf(guid) + " is deprecated",
                          "the Release Notes say which version supports this GUID");
        }
        std::string reason;
        if (findSample(m_endpoints, counter.info, counter.file, counter.offset, reason) != 0) {
            return fail_i(lead_i() + reason);
        }
        return 0;
    }

    int unresolved_i() {
        pw_u32_t guid = 0;
        const bool isNamed = pwr::extract_number_i(keyOf(m_message, m_operation, "GUID"), guid) == 0;
        if (isNamed && !AggrTelemIndex::instance().isLoaded(describedGuid(guid)) &&
            !keyOf(m_message, m_operation, "COUNTER-NAME").empty()) {
            const std::string described = hexOf(describedGuid(guid));
            return fail_i("the counters of telemetry GUID " + described + " are not described",
                          "install a valid xml_configs/telemetry_" + described + ".xml beside the library");
        }
        return fail_i(lead_i() + "its counter is not found; the warnings say why",
                      "correct the operation's keys, or list the endpoint that it means");
    }

    int findType_i(Counter& counter) {
        if (collectors::rawTypeOf(m_message, m_operation, counter.type, m_out.reason) != 0) {
            return 1;
        }
        if (counter.type == RawType::STRING) {
            return fail_i(complaint(m_message, m_operation, "RAW-TYPE", "a counter is no text"));
        }
        const bool isWhole = counter.info.format.sign == 'U' && counter.info.format.y == 0;
        if (!isWhole && counter.type != RawType::REAL) {
            return fail_i(complaint(m_message, m_operation, "DATA-FORMAT",
                                    "such values need RAW-TYPE=REAL; a COUNTER is scaled by SCALE instead"));
        }
        return 0;
    }

    int findWidth_i(Counter& counter) {
        unsigned width = 0;
        const unsigned bits = unsigned{counter.info.msb} - counter.info.lsb + 1U;
        if (collectors::widthOf(m_message, m_operation, width, m_out.reason) != 0 ||
            collectors::checkWidth(m_message, m_operation, bits, width, m_out.reason) != 0) {
            return 1;
        }
        // A counter's lower bits are a counter of that width; the bits of a level belong together.
        const bool isCut = collectors::isCounter(m_message) && width < SAMPLE_BITS;
        counter.mask = isCut ? (std::uint64_t{1} << width) - 1 : ~std::uint64_t{0};
        return 0;
    }

    int findOwner_i(const pwr::MachineFiles& machine, Counter& counter) {
        collectors::OwnerPatterns owners;
        if (owners.parse(m_message, m_operation, "SYSTEM", m_out.reason) != 0) {
            return 1;
        }
        collectors::Binding binding;
        binding.bind("endpoint", std::to_string(counter.info.endpointId));
        static_cast<collectors::Owner&>(counter) = owners.ownerOf(machine, binding);
        if (counter.entity.find('{') != std::string::npos) {
            return fail_i(complaint(m_message, m_operation, "ENTITY", "only {endpoint} is known here"));
        }
        if (counter.descriptor.find('{') != std::string::npos) {
            return fail_i(complaint(m_message, m_operation, "DESCRIPTOR", "only {endpoint} is known here"));
        }
        if (counter.descriptor.empty()) {
            counter.descriptor = collectors::descriptorOf(m_message, m_operation);
        }
        return 0;
    }

    const MsgMetadata& m_message;
    const OperationMetadata& m_operation;
    const std::vector<TelemetryEndpoint>& m_endpoints;
    MessageInstances& m_out;
};

} // namespace

pw_u32_t describedGuid(pw_u32_t guid) {
    const pw_u32_t emulated = g_pluginEnvironment->getTAFEmulatedGUID(guid);
    return emulated == 0 ? guid : emulated;
}

std::uint64_t Counter::valueIn(std::uint64_t sample) const {
    const std::uint64_t bits = info.bitsOf(sample);
    if (type == RawType::REAL) {
        return std::bit_cast<std::uint64_t>(pwr::convertToFloatPoint(bits, info.format));
    }
    return collectors::valueOf(bits, unsigned{info.msb} - info.lsb + 1U, type) & mask;
}

const TelemetryEndpoint* findEndpoint(const std::vector<TelemetryEndpoint>& endpoints, pw_u16_t id) {
    const auto found = std::find_if(endpoints.begin(), endpoints.end(), [id](const TelemetryEndpoint& one) {
        return one.info.endpoint_id == id;
    });
    return found == endpoints.end() ? nullptr : &*found;
}

int findSample(const std::vector<TelemetryEndpoint>& endpoints, const pwr::AggrTelemCounterInfo& info,
               std::string& file, std::uint64_t& offset, std::string& reason) {
    const TelemetryEndpoint* endpoint = findEndpoint(endpoints, info.endpointId);
    if (endpoint == nullptr || endpoint->info.guid != info.guid) {
        reason = "endpoint " + std::to_string(info.endpointId) + " of GUID " + hexOf(info.guid) +
                 " is not among those listed";
        return 1;
    }
    if (info.sampleId >= endpoint->info.sample_count) {
        reason = "sample " + std::to_string(info.sampleId) + " is beyond the " +
                 std::to_string(endpoint->info.sample_count) + " of endpoint " +
                 std::to_string(info.endpointId);
        return 1;
    }
    file = endpoint->file;
    offset = endpoint->info.address + SAMPLE_SIZE * info.sampleId;
    return 0;
}

int resolveCounters(const MsgMetadata& message, const pwr::MachineFiles& machine,
                    const std::vector<TelemetryEndpoint>& endpoints, std::vector<Counter>& counters,
                    MessageInstances& out) {
    for (const OperationMetadata* operation : message.getMetaValues()) {
        Counter counter;
        if (collectors::isConstant(*operation)) {
            continue;
        }
        if (CounterFinder(message, *operation, endpoints, out).find(machine, counter) != 0) {
            return 1;
        }
        counters.push_back(std::move(counter));
    }
    if (counters.empty()) {
        out.reason = "message " + message.getMsgName() + ": it reads nothing";
        return 1;
    }
    return 0;
}

} // namespace aggregator
