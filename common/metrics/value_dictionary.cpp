#include "common/metrics/value_dictionary.h"

#include <cmath>

namespace pwr {

namespace {

/// Ranges of reals compare by their low ends.
bool isNaN(const Data& value) {
    Data::RealRange range(0.0, 0.0);
    if (value.getType() == DataType::REAL) {
        value.toReal(range.first);
    } else if (value.getType() == DataType::REAL_RANGE) {
        value.toRealRange(range);
    }
    return std::isnan(range.first);
}

} // namespace

bool DataOrder::operator()(const Data& left, const Data& right) const {
    if (left.getType() == right.getType()) {
        if (isNaN(left)) {
            return false;
        }
        if (isNaN(right)) {
            return true;
        }
    }
    return left < right;
}

std::uint32_t ValueDictionary::enter(const Data& value) {
    const auto [entry, isNew] = m_numbers.try_emplace(value, size());
    if (isNew) {
        m_values.push_back(entry);
    }
    return entry->second;
}

std::uint32_t ValueDictionary::find(const Data& value) const {
    const auto found = m_numbers.find(value);
    return found != m_numbers.end() ? found->second : NONE;
}

} // namespace pwr
