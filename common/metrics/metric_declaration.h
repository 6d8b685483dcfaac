#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "common/export.h"
#include "common/metadata/metric_metadata.h"
#include "common/metrics/metric.h"
#include "common/values/data.h"

namespace pwr {

class Quantity;

/// A scale or an offset as it was written: a decimal number, and its whole part when it is whole, so that
/// counts stay exact.
struct KRCOMMON_API DecimalNumber {
    double value = 0.0;
    std::int64_t whole = 0;
    bool isWhole = true;
};

/// What a metric's record says, checked and typed. The keys, what each means and which values it takes are
/// one table in the source, by which metric plug-ins compute and hardware descriptions are checked.
struct KRCOMMON_API MetricDeclaration {
    enum class Source : std::uint8_t { COUNTER, LEVEL };

    std::string name;
    std::string containerTag;
    Metric::MetricType type = Metric::MetricType::SampledValue;
    std::string quantity;
    Source source = Source::LEVEL;
    unsigned width = 64; ///< of a counter, in bits
    DecimalNumber scale{1.0, 1, true};
    DecimalNumber offset;
    DataType rawType = DataType::NONE; ///< how the 64 bits of a reading are meant
    DataType valueType = DataType::NONE;
    bool isRaw = false; ///< the 64 bits of a reading are the value, unsigned and unscaled
    std::vector<std::pair<std::string, std::string>> states; ///< value and name, in order
    std::string entityTitle;
    std::string descriptorTitle;
    std::string plugin; ///< which metric plug-in computes it; "" for the generic one
    std::string rest;
    std::string notBooked;

    /// Reads a record. 1 with the key and what is wrong in `error`.
    int parse(const MetricMetadata& record, std::string& error);
    /// The same for the pairs of a message's constants.
    int parse(const MetricMetadata::ValueList& values, std::string& error);
    /// Takes one key. 1 with what is wrong in `error`.
    int set(const std::string& key, const std::string& value, std::string& error);
    /// Whether a key is for collector and host alone, so that a metric's record need not have it.
    static bool isForMessage(const std::string& key);

private:
    int complete_i(std::string& error);
};

/// The quantity that a text names: a built-in's accessor name ("time", "data"), "name;unit", or
/// "name;unit;rate name;rate unit;factor". The same text gives the same quantity for the whole process.
/// Null for "" and, with what is wrong in `error`, for anything else.
KRCOMMON_API const Quantity* quantityOf(const std::string& text, std::string& error);
/// Whether a text names a quantity, without making it. 1 with what is wrong in `error`.
KRCOMMON_API int checkQuantity(const std::string& text, std::string& error);

} // namespace pwr
