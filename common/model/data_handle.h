#pragma once

#include <cstdint>
#include <string>

#include "common/export.h"
#include "common/model/unique_id.h"

namespace pwr {

class Description;

/// The kind of a handle. The numbers are fixed; those left out are taken.
enum class DataHandleType : std::uint32_t {
    ATTRIBUTE = 0,
    FIELD = 1,
    STATE = 2,
    EVENT = 6,
    ENTITY = 7,
    DATA_DESCRIPTOR = 9,
    PROCESS = 10,
    THREAD = 11,
    NAME_VALUE = 12
};

/// Identifies something that tables, metrics and writers refer to: a measured thing, a column, a state, an event.
/// Carries copies of the texts of the description it was made from. Handles are made by the `create` of their
/// class, which registers them; they live for the whole process, so holders keep plain pointers.
class KRCOMMON_API DataHandle : public UniqueId {
public:
    ~DataHandle() override;

    /// Finds the handle with an id. Returns 0 and sets `out`; 1 and a warning, `out` untouched, when no object
    /// with that id is registered or when the object is no handle (a quantity, for example).
    static int get(std::uint64_t id, const DataHandle*& out);

    [[nodiscard]] UniqueIdType getIdType() const override;

    /// The name that tells this handle from others of the same name; for most kinds the name itself.
    [[nodiscard]] virtual std::string getQualifiedName() const;

    [[nodiscard]] const std::string& getName() const noexcept { return m_name; }
    [[nodiscard]] const std::string& getFieldName() const noexcept { return m_fieldName; }
    [[nodiscard]] const std::string& getShortName() const noexcept { return m_shortName; }
    [[nodiscard]] const std::string& getDescription() const noexcept { return m_description; }
    [[nodiscard]] const std::string& getHeader() const noexcept { return m_header; }
    [[nodiscard]] DataHandleType getHandleType() const noexcept { return m_handleType; }

protected:
    DataHandle(const Description& description, DataHandleType handleType);

private:
    std::string m_name;
    std::string m_fieldName;
    std::string m_shortName;
    std::string m_description;
    std::string m_header;
    DataHandleType m_handleType;
};

} // namespace pwr
