#pragma once

#include "common/export.h"
#include "common/pw_types.h"

namespace pwr {

/// Base of the records that describe a collection and are saved with it.
/// The type is set at construction and tells which record it is; whoever receives a record through
/// this base casts by it.
class KRCOMMON_API Metadata {
public:
    /// Kinds of records. Persistent: the number stands in front of each saved record, so never
    /// renumber, and never reuse the number of a kind that went. 0 stays free, so that a zeroed
    /// stretch of a file is not taken for a record.
    enum class __metadata_data_type : pw_u32_t {
        SYSTEM = 1,
        MSG = 2,
        METRIC = 3,
        COLLECTOR = 4,
        OPERATION = 5
    };

    virtual ~Metadata();

    __metadata_data_type getType() const { return m_type; }

    /// Number of the plug-in that the record belongs to (1 to 255, given by the host in loading
    /// order), or 0 for records that belong to none.
    virtual pw_u32_t getPluginID() const;

protected:
    explicit Metadata(__metadata_data_type type) : m_type(type) {}
    // Only whole records are copied or moved, never the base alone.
    Metadata(const Metadata&) = default;
    Metadata(Metadata&&) = default;
    Metadata& operator=(const Metadata&) = default;
    Metadata& operator=(Metadata&&) = default;

private:
    __metadata_data_type m_type;
};

} // namespace pwr
