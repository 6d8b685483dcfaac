#pragma once

#include <cstdint>

namespace pwr {

/// The classes of tables that a writer plug-in can say it takes (capability group "table-class:summary" and so on).
enum class TableClass : std::uint8_t { SUMMARY = 0, OVER_TIME = 1, TRACE = 2, STATIC_INFO = 3 };

/// What the values of a metric's tables are, for writers that treat them differently.
enum class RealTableClass : std::uint8_t {
    NONE = 0,
    VALUE = 1,
    RESIDENCY = 2,
    DELTA = 3,
    TRANSITION = 4,
    EVENT = 5
};

/// Which over-time table a residency container asks the writers for.
enum class TimelineTableType : std::uint8_t { NONE = 0, PERCENTAGE = 1, MILLISECOND = 2, COMBINED = 3 };

/// What one table message holds.
enum class TableMessageType : std::uint8_t { SUMMARY = 0, OVER_TIME = 1, STATIC_INFO = 2 };

} // namespace pwr
