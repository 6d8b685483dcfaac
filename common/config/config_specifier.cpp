#include "common/config/config_specifier.h"

#include <algorithm>
#include <cinttypes>
#include <cstdint>
#include <cstdio>

#include "common/config/specifier_values.h"
#include "common/plugin/logger.h"
#include "common/pw_utils.h"

namespace pwr {

namespace {

/// A key, "=0x" and the number in hexadecimal digits.
std::string hexAssignment(const char* key, pw_u32_t value) {
    char digits[sizeof "ffffffff"];
    std::snprintf(digits, sizeof digits, "%" PRIx32, value);
    return std::string(key) + "=0x" + digits;
}

} // namespace

ConfigSpecifier::ConfigSpecifier(const std::string& type) : m_type(type) {}

ConfigSpecifier::~ConfigSpecifier() = default;

int ConfigSpecifier::match(const std::string& type, const std::string& value) const {
    return type == m_type ? matchValue_i(value) : NO_MATCH;
}

FMSConfigSpecifier::FMSConfigSpecifier(pw_u8_t family, pw_u8_t model, pw_u8_t stepping)
    : ConfigSpecifier("FMS"), m_family(family), m_model(model), m_stepping(stepping) {}

std::string FMSConfigSpecifier::toString() const {
    std::string text = getType() + "=" + std::to_string(m_family) + "." + std::to_string(m_model);
    if (m_stepping != 0) {
        text += "." + std::to_string(m_stepping);
    }
    return text;
}

int FMSConfigSpecifier::matchValue_i(const std::string& value) const {
    FMSValue fms;
    if (!readFMSValue(value, fms) || fms.family != m_family || fms.model != m_model) {
        return NO_MATCH;
    }
    if (fms.stepping == m_stepping) {
        return EXACT_MATCH;
    }
    return fms.stepping == 0 || m_stepping == 0 ? PARTIAL_MATCH : NO_MATCH;
}

PCIConfigSpecifier::PCIConfigSpecifier(pw_u32_t vendor, pw_u32_t device)
    : ConfigSpecifier("PCI"), m_vendor(vendor), m_device(device) {}

std::string PCIConfigSpecifier::toString() const {
    return hexAssignment("VENDOR", m_vendor) + "," + hexAssignment("DEVICE", m_device);
}

int PCIConfigSpecifier::matchValue_i(const std::string& value) const {
    PCIValue device;
    return readPCIValue(value, device) && device.vendor == m_vendor && device.device == m_device ? EXACT_MATCH
                                                                                                 : NO_MATCH;
}

TAFConfigSpecifier::TAFConfigSpecifier(const std::vector<pw_u32_t>& guids)
    : ConfigSpecifier("TAF"), m_guids(guids) {}

std::string TAFConfigSpecifier::toString() const {
    std::string text;
    for (const pw_u32_t guid : m_guids) {
        text += (text.empty() ? "" : ",") + hexAssignment("GUID", guid);
    }
    return text;
}

int TAFConfigSpecifier::matchValue_i(const std::string& value) const {
    pw_u32_t guid = 0;
    return readGUIDValue(value, guid) && std::find(m_guids.begin(), m_guids.end(), guid) != m_guids.end()
               ? EXACT_MATCH
               : NO_MATCH;
}

ValueConfigSpecifier::ValueConfigSpecifier(const std::string& name, const std::string& value)
    : ConfigSpecifier(name), m_value(value) {}

std::string ValueConfigSpecifier::toString() const {
    return getType() + "=" + m_value;
}

int ValueConfigSpecifier::matchValue_i(const std::string& value) const {
    std::int64_t given = 0;
    std::int64_t stored = 0;
    const bool areNumbers = readInteger32(value, given) && readInteger32(m_value, stored);
    return (areNumbers ? given == stored : value == m_value) ? EXACT_MATCH : NO_MATCH;
}

RangeConfigSpecifier::RangeConfigSpecifier(const std::string& name, pw_u32_t low, pw_u32_t high)
    : ConfigSpecifier(name), m_low(low), m_high(high) {}

std::string RangeConfigSpecifier::toString() const {
    return getType() + "=" + std::to_string(m_low) + "," + std::to_string(m_high);
}

int RangeConfigSpecifier::matchValue_i(const std::string& value) const {
    pw_u32_t number = 0;
    if (extract_number_i(value, number) != 0) {
        // A number that is negative, too large or not whole lies in no range, but it is one.
        if (!isNumber(value)) {
            logError("ERROR: range specifier MUST be a number!\n");
        }
        return NO_MATCH;
    }
    return m_low <= number && number <= m_high ? EXACT_MATCH : NO_MATCH;
}

} // namespace pwr
