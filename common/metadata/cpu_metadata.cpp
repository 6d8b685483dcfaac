#include "common/metadata/cpu_metadata.h"

#include "common/plugin/logger.h"
#include "common/pw_utils.h"
#include "common/tokenizer.h"

#include <array>
#include <charconv>

namespace pwr {

namespace {

/// The low 8 bits of a text that isNumber() accepts. Digits end at the first dot; a minus sign takes
/// the two's complement, and only the low bits are kept on the way, so that no length overflows.
pw_u8_t lowByteOf(const std::string& token) {
    const bool hexadecimal = token.find("0x") != std::string::npos;
    const bool negative = token.front() == '-';
    std::size_t position = negative ? 1 : 0;
    unsigned base = 10;
    if (hexadecimal) {
        position += 2;
        base = 16;
    }
    unsigned value = 0;
    for (; position < token.size(); ++position) {
        unsigned digit = base;
        std::from_chars(&token[position], &token[position] + 1, digit, static_cast<int>(base));
        if (digit >= base) {
            break;
        }
        value = (value * base + digit) & 0xFF;
    }
    return static_cast<pw_u8_t>((negative ? 0U - value : value) & 0xFF);
}

} // namespace

CPUMetadata::CPUMetadata() : PlatformMetadata("FMS") {}

void CPUMetadata::setFMS(pw_u8_t family, pw_u8_t model, pw_u8_t stepping) {
    m_family = family;
    m_model = model;
    m_stepping = stepping;
}

bool CPUMetadata::setSpoofedFMS(const std::string& text) {
    const std::vector<std::string> tokens = Tokenizer(text, ".").get_all_tokens();
    if (tokens.size() < 2 || tokens.size() > 3) {
        logWarning(
            "WARNING: invalid FMS value %s received: MUST be in format <family>.<model>[.<stepping>]\n",
            text.c_str());
        logWarning("WARNING: where [.<stepping>] is optional and defaults to 0\n");
        return false;
    }
    std::array<pw_u8_t, 3> values{};
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        if (!isNumber(tokens[i])) {
            logWarning("WARNING: invalid FMS token %s -- MUST be a number!\n", tokens[i].c_str());
            return false;
        }
        values[i] = lowByteOf(tokens[i]);
    }
    setFMS(values[0], values[1], values[2]);
    return true;
}

void CPUMetadata::buildTopology(const std::string& text, std::size_t coresPerModule) {
    m_topology.buildTopology(text, coresPerModule);
}

void CPUMetadata::buildHWQFeedbackMapping(const std::string& text) {
    m_topology.buildHWQMapping(text);
}

void CPUMetadata::addTopologyChange(const TopologyChange& change) {
    m_topologyChanges.push_back(change);
}

} // namespace pwr
