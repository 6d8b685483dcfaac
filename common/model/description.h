#pragma once

#include <cstdint>
#include <string>

#include "common/export.h"

namespace pwr {

/// What a description is made for.
enum class DescriptionType : std::uint32_t {
    PLAIN = 0,
    ATTRIBUTE,
    FIELD,
    STATE,
    EVENT,
    ENTITY,
    DATA_DESCRIPTOR,
    PROCESS,
    THREAD
};

/// The texts that a handle is made from: they are copied into the handle, so later changes do not reach it.
/// The field name heads a column and starts as the name; the short name is the name when none is given;
/// description and header (a heading above several columns) start empty.
class KRCOMMON_API Description {
public:
    Description(const std::string& name, const std::string& shortName);
    Description(const Description&) = default;
    Description(Description&&) = default;
    Description& operator=(const Description&) = default;
    Description& operator=(Description&&) = default;
    virtual ~Description();

    void setFieldName(const std::string& fieldName);
    void setDescription(const std::string& description);
    void setHeader(const std::string& header);

    [[nodiscard]] const std::string& getName() const noexcept { return m_name; }
    [[nodiscard]] const std::string& getFieldName() const noexcept { return m_fieldName; }
    [[nodiscard]] const std::string& getShortName() const noexcept { return m_shortName; }
    [[nodiscard]] const std::string& getDescription() const noexcept { return m_description; }
    [[nodiscard]] const std::string& getHeader() const noexcept { return m_header; }
    [[nodiscard]] DescriptionType getType() const noexcept { return m_type; }

protected:
    Description(DescriptionType type, const std::string& name, const std::string& shortName);

private:
    std::string m_name;
    std::string m_fieldName;
    std::string m_shortName;
    std::string m_description;
    std::string m_header;
    DescriptionType m_type;
};

} // namespace pwr
