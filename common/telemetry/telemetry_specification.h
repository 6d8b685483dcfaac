#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "common/pw_types.h"
#include "common/telemetry/name_index.h"

namespace pwr {

/// The counters of one telemetry GUID, as its specification file describes them: samples by name, and the bit fields
/// of each. What the file says wrongly (a number that is none) is left out and named in problems(); of two samples,
/// or two fields of a sample, with one name the first counts.
class TelemetrySpecification {
public:
    struct BitRange {
        pw_u16_t lsb = 0;
        pw_u16_t msb = 0;
    };

    /// Reads the text, which the parsing changes. 0; or 1 when it is no XML, and the specification is empty.
    int parse(std::span<char> text);

    bool findSample(std::string_view sample, pw_u16_t& id) const;
    bool findField(std::string_view sample, std::string_view field, BitRange& range) const;

    std::size_t samples() const { return m_samples.size(); }
    const std::vector<std::string>& problems() const { return m_problems; }

private:
    class Walk;
    struct Sample {
        pw_u16_t id;
        std::uint32_t number; ///< owner of its fields' names
    };

    NameIndex<Sample> m_samples;
    NameIndex<BitRange> m_fields;
    std::vector<std::string> m_problems;
};

} // namespace pwr
