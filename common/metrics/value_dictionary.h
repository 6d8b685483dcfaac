#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "common/values/data.h"

namespace pwr {

/// The order of values in tables: that of Data, with NaN, which Data cannot order, behind all reals.
struct DataOrder {
    bool operator()(const Data& left, const Data& right) const;
};

/// Numbers values that are no plain numbers themselves, in the order in which they are first seen. Ranges are one
/// value when their low ends are equal, as they compare.
class ValueDictionary {
public:
    static constexpr std::uint32_t NONE = 0xFFFFFFFF;

    /// The number of a value, a new one when it is new.
    std::uint32_t enter(const Data& value);
    [[nodiscard]] std::uint32_t find(const Data& value) const;
    [[nodiscard]] std::uint32_t size() const { return static_cast<std::uint32_t>(m_values.size()); }
    [[nodiscard]] const Data& operator[](std::uint32_t number) const { return m_values[number]->first; }

private:
    using Numbers = std::map<Data, std::uint32_t, DataOrder>;

    Numbers m_numbers;
    std::vector<Numbers::const_iterator> m_values;
};

} // namespace pwr
