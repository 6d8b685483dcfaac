#pragma once

#include "common/export.h"
#include "common/pw_types.h"

namespace pwr {

class Serializer;

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

    /// Writes the record as it is saved: its kind in 32 bits, then its body.
    void serialize(Serializer& out) const;

    /// Reads the next record, whatever its kind: it belongs to the caller. Null when its kind is
    /// unknown or its body is unreadable; where the reading position then stands means nothing, so
    /// nothing behind can be read. The number is passed on to the body's reader and means nothing yet: give 0.
    static Metadata* deserialize(Serializer& in, unsigned reserved);

protected:
    /// Writes the body.
    virtual void serialize_i(Serializer& out) const = 0;
    /// Reads the body in place of what the record holds: 0, or -1 when it is unreadable; what was
    /// read until then may stay.
    virtual int deserialize_i(Serializer& in, unsigned reserved) = 0;

    /// Reads a record of a known kind, its kind included, for records that hold others: -1 when another
    /// kind stands there, before anything is made of it. A file cannot nest records deeper this way.
    static int deserializeAs_i(Metadata& record, Serializer& in, unsigned reserved);

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
