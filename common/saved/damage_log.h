#pragma once

#include "common/saved/damage.h"

#include <map>
#include <string>

namespace pwr::saved {

/// Gathers damage. A file is looked at up to twice, at opening and when its readings are taken, so one place is kept
/// once.
class DamageLog {
public:
    /// Bytes from `offset` on were skipped.
    void add(pw_u64_t offset, pw_u64_t length, const std::string& kind, const std::string& reason);
    DamageReport& report() { return m_report; }
    const DamageReport& report() const { return m_report; }
    /// By their places.
    void sort();

private:
    DamageReport m_report;
    std::map<pw_u64_t, std::size_t> m_places; ///< offset to position in the report
};

} // namespace pwr::saved
