#pragma once

#include <string>

#include "common/export.h"
#include "common/model/data_handle.h"
#include "common/model/description.h"
#include "common/values/data.h"

namespace pwr {

class Quantity;

/// Describes a column of a table: its texts, the type of its cells and what they measure.
/// The quantity (null when the cells measure nothing) is not owned.
class KRCOMMON_API FieldDescription : public Description {
public:
    explicit FieldDescription(const std::string& name, const std::string& shortName = "",
                              DataType dataType = DataType::STRING, const Quantity* quantity = nullptr);

    [[nodiscard]] DataType getDataType() const noexcept { return m_dataType; }
    [[nodiscard]] const Quantity* getQuantity() const noexcept { return m_quantity; }

private:
    DataType m_dataType;
    const Quantity* m_quantity;
};

/// Identifies a column of a table.
class KRCOMMON_API Field : public DataHandle {
public:
    /// Registers a new field, which lives for the process.
    static const Field* create(const FieldDescription& description);

    [[nodiscard]] DataType getDataType() const noexcept { return m_dataType; }
    [[nodiscard]] const Quantity* getQuantity() const noexcept { return m_quantity; }

private:
    explicit Field(const FieldDescription& description);

    DataType m_dataType;
    const Quantity* m_quantity;
};

} // namespace pwr
