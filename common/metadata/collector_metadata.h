#pragma once

#include "common/export.h"
#include "common/metadata/metadata.h"

#include <iosfwd>
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

protected:
    void serialize_i(Serializer& out) const override;
    int deserialize_i(Serializer& in, unsigned reserved) override;

private:
    std::string m_name;
    ValueList m_values;
};

/// The record as text for people, one item a line.
KRCOMMON_API std::ostream& operator<<(std::ostream& out, const CollectorMetadata& record);

} // namespace pwr
