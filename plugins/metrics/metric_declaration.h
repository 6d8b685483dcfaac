#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "common/metadata/metric_metadata.h"
#include "common/metrics/metric.h"
#include "common/values/data.h"

namespace pwr {

class Quantity;

/// A scale or an offset as it was written: a decimal number, and its whole part when it is whole, so that
/// counts stay exact.
struct DecimalNumber {
    double value = 0.0;
    std::int64_t whole = 0;
    bool isWhole = true;
};

/// What a metric's record says, checked and typed. The keys, what each means and which values it takes are
/// one table in the source; check-config uses the same words.
struct MetricDeclaration {
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

private:
    int complete_i(std::string& error);
};

/// The quantity that a text names: a built-in's accessor name ("time", "data"), "name;unit", or
/// "name;unit;rate name;rate unit;factor". The same text gives the same quantity for the whole process.
/// Null for "" and, with what is wrong in `error`, for anything else.
const Quantity* quantityOf(const std::string& text, std::string& error);

} // namespace pwr
