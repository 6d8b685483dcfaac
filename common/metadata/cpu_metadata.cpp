#include "common/metadata/cpu_metadata.h"

#include "common/metadata/serializer.h"
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

void CPUMetadata::serializePlatformMetadata(Serializer& out) const {
    PlatformMetadata::serializePlatformMetadata(out);
    out.write(pw_u16_t{m_family}, pw_u16_t{m_model}, pw_u16_t{m_stepping}, busFreq, lfmFreq, hfmFreq,
              baseOpFreq, platformId, microcodeRevision);
    m_topology.serializeTree(out);
    m_topology.serializeHWQ(out);
    out.write(static_cast<pw_u16_t>(m_topologyChanges.size()));
    for (const TopologyChange& change : m_topologyChanges) {
        change.serialize(out);
    }
}

int CPUMetadata::deserializePlatformMetadata(Serializer& in) {
    m_topologyChanges.clear();
    std::array<pw_u16_t, 3> fms{};
    if (PlatformMetadata::deserializePlatformMetadata(in) != 0 || in.read(fms[0]) == 0 ||
        in.read(fms[1]) == 0 || in.read(fms[2]) == 0) {
        return 1;
    }
    setFMS(static_cast<pw_u8_t>(fms[0]), static_cast<pw_u8_t>(fms[1]), static_cast<pw_u8_t>(fms[2]));
    if (in.read(busFreq) == 0 || in.read(lfmFreq) == 0 || in.read(hfmFreq) == 0 || in.read(baseOpFreq) == 0 ||
        in.read(platformId) == 0 || in.read(microcodeRevision) == 0) {
        return 1;
    }
    // What remains of a broken tree or mapping must not be taken for the changes behind it.
    pw_u16_t changes = 0;
    if (m_topology.deserializeTree(in) != 0 || m_topology.deserializeHWQ(in) != 0 || in.read(changes) == 0) {
        return 1;
    }
    for (unsigned i = 0; i < changes; ++i) {
        TopologyChange change;
        if (change.deserialize(in) != 0) {
            return 1;
        }
        m_topologyChanges.push_back(std::move(change));
    }
    return 0;
}

} // namespace pwr
