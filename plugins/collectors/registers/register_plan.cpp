#include "plugins/collectors/registers/register_plan.h"

#include <map>
#include <utility>

namespace registers {

std::uint64_t RegisterValue::valueIn(std::uint64_t whole) const {
    const std::uint64_t mask = bits < 64 ? (std::uint64_t{1} << bits) - 1 : ~std::uint64_t{0};
    return collectors::valueOf(whole >> lsb & mask, bits, type);
}

RegisterPlan::RegisterPlan(const pwr::MachineFiles& machine, std::vector<RegisterValue> values)
    : m_values(std::move(values)) {
    std::map<std::string, std::size_t> files;
    std::map<std::pair<std::size_t, std::uint32_t>, std::size_t> known;
    for (const RegisterValue& value : m_values) {
        const auto [file, isNewFile] = files.try_emplace(value.path, m_files.size());
        if (isNewFile) {
            m_files.emplace_back(machine, value.path);
        }
        const auto [entry, isNew] = known.try_emplace({file->second, value.number}, m_registers.size());
        if (isNew) {
            m_registers.push_back({file->second, value.number, 0, false});
        }
        m_registerOf.push_back(entry->second);
    }
}

void RegisterPlan::read() {
    for (Register& one : m_registers) {
        one.isPresent = m_files[one.file].readNumber(one.number, one.whole) == pwr::MachineStatus::OK;
    }
}

int RegisterPlan::store(CollectionData& out) const {
    for (std::size_t i = 0; i < m_values.size(); ++i) {
        const Register& one = m_registers[m_registerOf[i]];
        const int result = one.isPresent ? out.add(m_values[i].valueIn(one.whole)) : out.addMissing();
        if (result != 0) {
            return 1;
        }
    }
    return 0;
}

} // namespace registers
