#pragma once

#include "common/export.h"
#include "common/metadata/metadata.h"
#include "common/pw_types.h"

#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

namespace pwr {

/// One hardware operation of a message, as saved with a collection: what was read, how wide it is,
/// and the keys that told the collector where to read it.
/// Keys and values must not be empty: an empty text does not survive saving. At most 255 values.
class KRCOMMON_API OperationMetadata : public Metadata {
public:
    using ValueList = std::vector<std::pair<std::string, std::string>>;

    OperationMetadata();

    /// name: the field that is read; operation: the collector type that reads it; size: width of the
    /// counter in bytes; orgMsgTag: tag of the message that declared the operation, "" for none.
    OperationMetadata(std::string name, std::string operation, pw_u32_t size, std::string orgMsgTag,
                      ValueList values);

    const std::string& getName() const { return m_name; }
    const std::string& getOperation() const { return m_operation; }
    pw_u32_t getSize() const { return m_size; }
    const std::string& getOrgMsgTag() const { return m_orgMsgTag; }
    /// (key, value) in the order of declaration.
    const ValueList& getValues() const { return m_values; }

protected:
    void serialize_i(Serializer& out) const override;
    int deserialize_i(Serializer& in, unsigned reserved) override;

private:
    int readValues_i(Serializer& in);

    std::string m_name;
    std::string m_operation;
    pw_u32_t m_size = 0;
    std::string m_orgMsgTag;
    ValueList m_values;
};

/// The constants of a message: pairs that the hardware description gives and nobody reads from
/// hardware. Saved as an operation named c_operation with size 0 and no tag, so a record that was
/// read back is recognised by its operation, not by its class. The name must not be empty.
class KRCOMMON_API CONSTANTOperationMetadata : public OperationMetadata {
public:
    static constexpr const char* c_operation = "CONSTANT";

    CONSTANTOperationMetadata(std::string name, ValueList values);

    ValueList::const_iterator begin() const { return getValues().begin(); }
    ValueList::const_iterator end() const { return getValues().end(); }
};

/// The record as text for people, one item a line.
KRCOMMON_API std::ostream& operator<<(std::ostream& out, const OperationMetadata& record);

} // namespace pwr
