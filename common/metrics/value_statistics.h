#pragma once

#include <bit>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "common/values/data.h"

namespace pwr {

/// The running statistics of one row. The words of the value's type hold its bits; the type is the container's.
struct ValueStatistics {
    std::uint64_t minimum = 0;
    std::uint64_t maximum = 0;
    std::uint64_t sum = 0;
    double weightedSum = 0.0;
    double totalWeight = 0.0;
    std::uint64_t count = 0;
    std::uint64_t duration = 0;
};

/// For values that are only counted: text, handles, ranges.
struct NoNumber {};

/// Adds samples of one type to a row. Loads and stores the row's words once for a run of samples.
template <class T> class StatisticsRun {
public:
    explicit StatisticsRun(ValueStatistics& row) : m_row(row), m_state(row) {}
    StatisticsRun(const StatisticsRun&) = delete;
    StatisticsRun& operator=(const StatisticsRun&) = delete;
    ~StatisticsRun() { m_row = m_state; }

    void add(std::uint64_t bits, std::uint64_t duration) {
        ++m_state.count;
        m_state.duration += duration;
        if constexpr (!std::is_same_v<T, NoNumber>) {
            const T value = std::bit_cast<T>(bits);
            // "Greater" is "neither less nor equal": the same for numbers, and what Data says of NaN.
            if (!(std::bit_cast<T>(m_state.minimum) <= value)) {
                m_state.minimum = bits;
            }
            if (std::bit_cast<T>(m_state.maximum) < value) {
                m_state.maximum = bits;
            }
            if constexpr (std::is_same_v<T, double>) {
                m_state.sum = std::bit_cast<std::uint64_t>(std::bit_cast<double>(m_state.sum) + value);
            } else {
                m_state.sum += bits; // wraps, as sums of integers do
            }
            const double weight = static_cast<double>(duration);
            m_state.weightedSum += static_cast<double>(value) * weight;
            m_state.totalWeight += weight;
        }
    }

private:
    ValueStatistics& m_row;
    ValueStatistics m_state;
};

/// The seeds of a row: those of Data::initMin, initMax and initZero. The smallest maximum of reals is the smallest
/// positive normal number, so the maximum of negative samples stays there.
inline ValueStatistics seedStatistics(DataType type) {
    ValueStatistics seeds;
    if (type == DataType::INT) {
        seeds.minimum = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
        seeds.maximum = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::min());
    } else if (type == DataType::UINT) {
        seeds.minimum = std::numeric_limits<std::uint64_t>::max();
    } else if (type == DataType::REAL) {
        seeds.minimum = std::bit_cast<std::uint64_t>(std::numeric_limits<double>::max());
        seeds.maximum = std::bit_cast<std::uint64_t>(std::numeric_limits<double>::min());
    }
    return seeds;
}

/// Keys for counting by value: equal values have equal keys. Both zeros are one value, and so are all NaN.
template <class T> std::uint64_t distinctKey(std::uint64_t bits) {
    if constexpr (std::is_same_v<T, double>) {
        const double value = std::bit_cast<double>(bits);
        if (value == 0.0) {
            return 0;
        }
        if (value != value) {
            return std::bit_cast<std::uint64_t>(std::numeric_limits<double>::quiet_NaN());
        }
    }
    return bits;
}

} // namespace pwr
