#pragma once

#include "common/export.h"
#include "common/metadata/metadata.h"

#include <string>
#include <utility>
#include <vector>

namespace pwr {

/// One collector of a collection: its name and what it told about itself (version, clock, whether
/// its capability was there, and if not why) as (key, value) pairs.
/// Keys and values must not be empty: an empty text does not survive saving.
class KRCOMMON_API CollectorMetadata : public Metadata {
public:
    using ValueList = std::vector<std::pair<std::string, std::string>>;

    CollectorMetadata();
    CollectorMetadata(std::string name, ValueList values);

    const std::string& getName() const { return m_name; }
    /// (key, value) in the order of declaration.
    const ValueList& getValues() const { return m_values; }

private:
    std::string m_name;
    ValueList m_values;
};

} // namespace pwr
