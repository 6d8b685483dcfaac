#pragma once

#include "common/export.h"
#include "common/metadata/platform_metadata.h"
#include "common/pw_types.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace pwr {

/// Registers of the chipset whose meaning is known. Persistent: never renumber.
enum class CXHRegister : pw_u16_t {
    LPM_ENABLE = 0x0100,
    LPM_PRIORITY = 0x0101,
    LPM_LATCH = 0x0102,
    LPM_RESIDENCY_UNIT = 0x0103,
    ENERGY_REPORT_CONTROL = 0x0200,
    ENERGY_REPORT_UNIT = 0x0201,
    ENERGY_REPORT_INTERVAL = 0x0202
};

/// The chipset that a collection ran on: the values of its registers when the collection began.
class KRCOMMON_API CXHMetadata : public PlatformMetadata {
public:
    /// Register id and value. Ids beyond CXHRegister are kept and saved, but have no name.
    using RegisterEntry = std::pair<pw_u16_t, pw_u32_t>;

    CXHMetadata();

    /// In the order of adding.
    const std::vector<RegisterEntry>& getRegisterEntries() const { return m_registers; }
    /// Adds an entry behind the others; at most 65,535 can be saved.
    void addRegisterEntry(pw_u16_t registerId, pw_u32_t value);

    /// Values of the registers that set up the low-power modes, by the registers' names; only those
    /// that were read. Of two entries of one register the later counts.
    std::map<std::string, pw_u32_t> getLPMConfigurations() const;
    /// The same for the registers that set up energy reporting.
    std::map<std::string, pw_u32_t> getEnergyReportingConfiguration() const;

    void serializePlatformMetadata(Serializer& out) const override;
    int deserializePlatformMetadata(Serializer& in) override;

    /// Takes "VENDOR=0x1,DEVICE=0x2" for the chipset in place of the machine's devices. False and a warning for
    /// any other text; nothing is changed then.
    bool setSpoofedCXH(const std::string& text);

protected:
    /// All PCI devices of the machine, unless there are specifier values: which of them is the chipset, the hardware
    /// description knows.
    int initAndGetValue_i(const SystemMetadata& system, std::vector<std::string>& values) override;

private:
    std::vector<RegisterEntry> m_registers;
};

} // namespace pwr
