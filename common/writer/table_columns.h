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
struct TableColumn {
    enum class Kind { ROW_ENTITY, LABEL, SHARED, VALUE };

    Kind kind;
    unsigned fieldNumber;     ///< meaningless for ROW_ENTITY
    DataType type;            ///< HANDLE for ROW_ENTITY
    std::string name;         ///< title without unit
    std::string unit;         ///< "" when it has none
    /// Name and unit as a writer prints them: "Min (MHz)".
    std::string title() const { return unit.empty() ? name : name + " (" + unit + ")"; }
    /// Numbers stand right, texts left.
    bool isNumber() const;
};

/// The columns in which any table is printed: the row's entity (only when the table has entities and no label
/// fields), the label fields, the shared fields, then the values, each group in field order.
KRCOMMON_API std::vector<TableColumn> getTableColumns(const TableMessage &table);

/// The text of a cell for people: formatted by the field's formatter, "<N/A>" without value, entities by qualified name.
KRCOMMON_API std::string getCellText(const TableMessage &table, const EntityHandle *entity, std::size_t row,
                                     const TableColumn &column);

/// The text of a cell for machines: numbers in full precision without unit, padding and locale, "" without value.
KRCOMMON_API std::string getCellRawText(const TableMessage &table, const EntityHandle *entity, std::size_t row,
                                        const TableColumn &column);

} // namespace pwr
