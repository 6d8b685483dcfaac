#pragma once

#include "common/export.h"
#include "common/metadata/metadata.h"
#include "common/pw_types.h"

#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

namespace pwr {

/// One metric of a collection: which plug-in computes it, and what it shall be (name, type,
/// quantity, tags) as (key, value) pairs.
/// Keys and values must not be empty: an empty text does not survive saving.
class KRCOMMON_API MetricMetadata : public Metadata {
public:
    using ValueList = std::vector<std::pair<std::string, std::string>>;

    MetricMetadata();

    /// Numbers are 1 to 255, given by the host in loading and file order.
    MetricMetadata(pw_u32_t pluginId, pw_u32_t metricId, ValueList values);

    pw_u32_t getPluginID() const override;
    pw_u32_t getMetricID() const { return m_metricId; }
    /// (key, value) in the order of declaration.
    const ValueList& getValues() const { return m_values; }
    /// The host's numbers in the place of the collector's own.
    void setIDs(pw_u32_t pluginId, pw_u32_t metricId);

protected:
    void serialize_i(Serializer& out) const override;
    int deserialize_i(Serializer& in, unsigned reserved) override;

private:
    pw_u32_t m_pluginId = 0;
    pw_u32_t m_metricId = 0;
    ValueList m_values;
};

/// The record as text for people, one item a line.
KRCOMMON_API std::ostream& operator<<(std::ostream& out, const MetricMetadata& record);

} // namespace pwr
