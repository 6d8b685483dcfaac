#pragma once

#include <string>

#include "common/metrics/summary_table.h"

namespace pwr {

/// The forms in which a residency is shown, shared by sampled and traced residencies.
struct ResidencyForm {
    const char* titleSuffix;
    bool hasPercentage;
    bool hasTime;
};

inline constexpr ResidencyForm RESIDENCY_PERCENTAGE = {" Summary: Residency (Percentage)", true, false};
inline constexpr ResidencyForm RESIDENCY_TIME = {" Summary: Residency (Time)", false, true};
inline constexpr ResidencyForm RESIDENCY_COMBINED = {" Summary: Residency (Percentage and Time)", true, true};

inline void addResidencyColumns(SummaryTable& table, const ResidencyForm& form) {
    if (form.hasPercentage) {
        table.addColumn("Residency (%)", " (%)", DataType::REAL);
    }
    if (form.hasTime) {
        table.addColumn("Residency (msec)", " (msec)", DataType::REAL);
    }
}

/// The cell of a column of the form. Without a total there is no share, and without a clock no time.
inline SummaryCell residencyCell(const ResidencyForm& form, std::size_t column, double ticks,
                                 double totalTicks, double ticksPerMillisecond) {
    if (form.hasPercentage && column == 0) {
        return realCell(ticks / totalTicks * 100.0);
    }
    return realCell(ticks / ticksPerMillisecond);
}

} // namespace pwr
