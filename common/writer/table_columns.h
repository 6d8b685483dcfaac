#pragma once

#include "common/export.h"
#include "common/values/data.h"

#include <cstddef>
#include <string>
#include <vector>

namespace pwr {

class EntityHandle;
class TableMessage;

/// What a writer needs to know of one column of a table.
struct KRCOMMON_API TableColumn {
    enum class Kind { ROW_ENTITY, LABEL, SHARED, VALUE };

    Kind kind;
    unsigned fieldNumber; ///< meaningless for ROW_ENTITY
    DataType type;        ///< HANDLE for ROW_ENTITY
    std::string name;     ///< title without unit
    std::string unit;     ///< "" when there is none
    std::string group;    ///< heading above several columns (the field's header), "" when there is none

    /// Name and unit as a report shows them: "Min (MHz)".
    std::string title() const { return unit.empty() ? name : name + " (" + unit + ")"; }
    /// Numbers stand right, texts left.
    bool isNumber() const;
};

/// The columns in which any table is printed: the row's entity (only when the table has entities and no label
/// fields), the label fields, the shared fields, then the values, each group in field order.
KRCOMMON_API std::vector<TableColumn> getTableColumns(const TableMessage& table);

/// The column of one field. The unit is that of the field's own quantity, else, for a number that is no label and
/// whose name does not end in a unit of its own such as "(%)", that of the table's quantity.
KRCOMMON_API TableColumn getFieldColumn(const TableMessage& table, unsigned number);

/// A cell for people: formatted by the field's formatter, entities by qualified name, "<N/A>" without a value.
/// The entity is that of the row, null in a table without entities. Warns of nothing.
KRCOMMON_API std::string getCellText(const TableMessage& table, const EntityHandle* entity, std::size_t row,
                                     const TableColumn& column);
KRCOMMON_API std::string getValueText(const Data& value);

/// A cell for machines: numbers in full precision without unit, padding and locale, ranges as "low -- high", texts
/// and names as they are, "" without a value and for a number that is not finite.
KRCOMMON_API std::string getCellRawText(const TableMessage& table, const EntityHandle* entity,
                                        std::size_t row, const TableColumn& column);

} // namespace pwr
