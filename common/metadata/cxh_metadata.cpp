#include "common/metadata/cxh_metadata.h"

#include "common/metadata/serializer.h"

#include <algorithm>
#include <iterator>

namespace pwr {

namespace {

enum class RegisterGroup { LPM, ENERGY_REPORTING };

struct KnownRegister {
    CXHRegister id;
    RegisterGroup group;
    const char* name;
};

constexpr KnownRegister c_registers[] = {
    {CXHRegister::LPM_ENABLE, RegisterGroup::LPM, "LPM_ENABLE"},
    {CXHRegister::LPM_PRIORITY, RegisterGroup::LPM, "LPM_PRIORITY"},
    {CXHRegister::LPM_LATCH, RegisterGroup::LPM, "LPM_LATCH"},
    {CXHRegister::LPM_RESIDENCY_UNIT, RegisterGroup::LPM, "LPM_RESIDENCY_UNIT"},
    {CXHRegister::ENERGY_REPORT_CONTROL, RegisterGroup::ENERGY_REPORTING, "ENERGY_REPORT_CONTROL"},
    {CXHRegister::ENERGY_REPORT_UNIT, RegisterGroup::ENERGY_REPORTING, "ENERGY_REPORT_UNIT"},
    {CXHRegister::ENERGY_REPORT_INTERVAL, RegisterGroup::ENERGY_REPORTING, "ENERGY_REPORT_INTERVAL"},
};

std::map<std::string, pw_u32_t> valuesOf(const std::vector<CXHMetadata::RegisterEntry>& entries,
                                         RegisterGroup group) {
    std::map<std::string, pw_u32_t> values;
    for (const auto& [id, value] : entries) {
        const auto* const known =
            std::find_if(std::begin(c_registers), std::end(c_registers),
                         [id = id](const KnownRegister& row) { return static_cast<pw_u16_t>(row.id) == id; });
        if (known != std::end(c_registers) && known->group == group) {
            values[known->name] = value;
        }
    }
    return values;
}

} // namespace

CXHMetadata::CXHMetadata() : PlatformMetadata("PCI") {}

void CXHMetadata::addRegisterEntry(pw_u16_t registerId, pw_u32_t value) {
    m_registers.emplace_back(registerId, value);
}

std::map<std::string, pw_u32_t> CXHMetadata::getLPMConfigurations() const {
    return valuesOf(m_registers, RegisterGroup::LPM);
}

std::map<std::string, pw_u32_t> CXHMetadata::getEnergyReportingConfiguration() const {
    return valuesOf(m_registers, RegisterGroup::ENERGY_REPORTING);
}

void CXHMetadata::serializePlatformMetadata(Serializer& out) const {
    PlatformMetadata::serializePlatformMetadata(out);
    out.write(m_registers);
}

int CXHMetadata::deserializePlatformMetadata(Serializer& in) {
    m_registers.clear();
    return PlatformMetadata::deserializePlatformMetadata(in) == 0 && in.read(m_registers) != 0 ? 0 : 1;
}

} // namespace pwr
