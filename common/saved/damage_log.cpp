#include "common/saved/damage_log.h"

#include <algorithm>

namespace pwr::saved {

void DamageLog::add(pw_u64_t offset, pw_u64_t length, const std::string& kind, const std::string& reason) {
    auto& stretches = m_report.stretches;
    const auto [place, isNew] = m_places.try_emplace(offset, stretches.size());
    if (isNew) {
        stretches.emplace_back();
    }
    Damage& damage = stretches[place->second];
    damage.offset = offset;
    damage.length = std::max(damage.length, length);
    if (isNew || damage.kind == "unknown") {
        damage.kind = kind;
        damage.reason = reason;
    }
}

void DamageLog::sort() {
    std::ranges::sort(m_report.stretches, {}, &Damage::offset);
    for (std::size_t i = 0; i < m_report.stretches.size(); ++i) {
        m_places[m_report.stretches[i].offset] = i;
    }
}

} // namespace pwr::saved
