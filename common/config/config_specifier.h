#pragma once

#include <string>
#include <vector>

#include "common/export.h"
#include "common/pw_types.h"

namespace pwr {

/// One property by which a platform of the hardware description is recognised. Owned by its platform.
/// Matching never throws: what cannot be read does not match. The order of the virtual operations is part of
/// the interface.
class KRCOMMON_API ConfigSpecifier {
public:
    enum MatchLevel : int { NO_MATCH = 0, PARTIAL_MATCH = 1, EXACT_MATCH = 2 };

    virtual ~ConfigSpecifier();
    ConfigSpecifier(const ConfigSpecifier&) = delete;
    ConfigSpecifier& operator=(const ConfigSpecifier&) = delete;

    /// How well a value found on a machine fits, as a MatchLevel; values of another type never do.
    virtual int match(const std::string& type, const std::string& value) const;
    /// For traces and listings.
    virtual std::string toString() const = 0;

    /// The type name: "FMS", "PCI", "TAF", or the name of a free property.
    const std::string& getType() const { return m_type; }

protected:
    explicit ConfigSpecifier(const std::string& type);

    /// The level for a value of this specifier's own type.
    virtual int matchValue_i(const std::string& value) const = 0;

private:
    std::string m_type;
};

/// Family, model and stepping of the processor. Stepping 0 means any: on one side alone it makes a partial match.
class KRCOMMON_API FMSConfigSpecifier : public ConfigSpecifier {
public:
    FMSConfigSpecifier(pw_u8_t family, pw_u8_t model, pw_u8_t stepping);
    /// "FMS=6.85.4", without the stepping when it is 0.
    std::string toString() const override;

protected:
    int matchValue_i(const std::string& value) const override;

private:
    pw_u8_t m_family;
    pw_u8_t m_model;
    pw_u8_t m_stepping;
};

/// A PCI device of the machine; matches exactly or not at all.
class KRCOMMON_API PCIConfigSpecifier : public ConfigSpecifier {
public:
    PCIConfigSpecifier(pw_u32_t vendor, pw_u32_t device);
    /// "VENDOR=0x1,DEVICE=0x2".
    std::string toString() const override;

protected:
    int matchValue_i(const std::string& value) const override;

private:
    pw_u32_t m_vendor;
    pw_u32_t m_device;
};

/// GUIDs of telemetry aggregators, of which the machine has one.
class KRCOMMON_API TAFConfigSpecifier : public ConfigSpecifier {
public:
    explicit TAFConfigSpecifier(const std::vector<pw_u32_t>& guids);
    /// "GUID=0x1,GUID=0x2".
    std::string toString() const override;
    const std::vector<pw_u32_t>& getGUIDs() const { return m_guids; }

protected:
    int matchValue_i(const std::string& value) const override;

private:
    std::vector<pw_u32_t> m_guids;
};

/// A free property with one value. Values are compared as numbers when both are whole numbers of 32 bits ("0x10"
/// equals "16"), else as texts.
class KRCOMMON_API ValueConfigSpecifier : public ConfigSpecifier {
public:
    ValueConfigSpecifier(const std::string& name, const std::string& value);
    /// "name=value".
    std::string toString() const override;

protected:
    int matchValue_i(const std::string& value) const override;

private:
    std::string m_value;
};

/// A free property whose value lies in a range, both ends included.
class KRCOMMON_API RangeConfigSpecifier : public ConfigSpecifier {
public:
    RangeConfigSpecifier(const std::string& name, pw_u32_t low, pw_u32_t high);
    /// "name=low,high".
    std::string toString() const override;
    pw_u32_t getLow() const { return m_low; }
    pw_u32_t getHigh() const { return m_high; }

protected:
    /// A value that is no number is an error in the log as well.
    int matchValue_i(const std::string& value) const override;

private:
    pw_u32_t m_low;
    pw_u32_t m_high;
};

} // namespace pwr
