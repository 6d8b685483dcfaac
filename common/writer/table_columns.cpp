#include "common/writer/table_columns.h"

#include "common/model/data_handle.h"
#include "common/model/entity_handle.h"
#include "common/writer/table_message.h"

#include <charconv>
#include <cmath>
#include <utility>

namespace pwr {

namespace {

constexpr const char* g_noValue = "<N/A>";
constexpr const char* g_rangeMiddle = " -- ";

/// The handle in a HANDLE cell, null when it does not resolve.
const DataHandle* handleIn(const Data& value) {
    const DataHandle* handle = nullptr;
    return value.toHandle(handle) == 0 ? handle : nullptr;
}

template <class Number> std::string numberText(Number number) {
    char buffer[32];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, number);
    return std::string(buffer, end.ptr);
}

std::string numberText(double number) {
    if (!std::isfinite(number)) {
        return std::string();
    }
    char buffer[32]; // the shortest text that reads back as the same double needs 24
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, number);
    return std::string(buffer, end.ptr);
}

template <class Number> std::string rangeText(const std::pair<Number, Number>& range) {
    return numberText(range.first) + g_rangeMiddle + numberText(range.second);
}

template <class Number> using Getter = int (Data::*)(Number&) const;

template <class Number> std::string scalarRawText(const Data& value, Getter<Number> get) {
    Number number{};
    return (value.*get)(number) == 0 ? numberText(number) : std::string();
}

template <class Number> std::string rangeRawText(const Data& value, Getter<std::pair<Number, Number>> get) {
    std::pair<Number, Number> range;
    return (value.*get)(range) == 0 ? rangeText(range) : std::string();
}

std::string rawText(const Data& value) {
    switch (value.getType()) {
    case DataType::INT: return scalarRawText<std::int64_t>(value, &Data::toInt);
    case DataType::UINT: return scalarRawText<std::uint64_t>(value, &Data::toUInt);
    case DataType::REAL: return scalarRawText<double>(value, &Data::toReal);
    case DataType::INT_RANGE: return rangeRawText<std::int64_t>(value, &Data::toIntRange);
    case DataType::UINT_RANGE: return rangeRawText<std::uint64_t>(value, &Data::toUIntRange);
    case DataType::REAL_RANGE: return rangeRawText<double>(value, &Data::toRealRange);
    case DataType::STRING: {
        std::string text;
        value.toString(text);
        return text;
    }
    case DataType::HANDLE: return handleIn(value) != nullptr ? getValueText(value) : std::string();
    case DataType::NONE: break;
    }
    return std::string();
}

bool saysItsUnit(const std::string& name) {
    return !name.empty() && name.back() == ')';
}

} // namespace

bool TableColumn::isNumber() const {
    return type >= DataType::INT && type <= DataType::REAL_RANGE;
}

TableColumn getFieldColumn(const TableMessage& table, unsigned number) {
    const DataHandle* field = table.getFieldHandle(number);
    TableColumn column{TableColumn::Kind::VALUE, number, table.getFieldType(number), {}, {}, {}};
    if (table.isSharedField(number)) {
        column.kind = TableColumn::Kind::SHARED;
    } else {
        const auto labelsEnd = table.handleBegin() + table.getLabelFieldCount();
        for (auto label = table.handleBegin(); label != labelsEnd; ++label) {
            if (*label == field) {
                column.kind = TableColumn::Kind::LABEL;
            }
        }
    }
    if (field != nullptr) {
        column.name = field->getFieldName();
        column.group = field->getHeader();
    }
    const Quantity* quantity = table.getFieldQuantity(number);
    if (quantity == nullptr && column.isNumber() && column.kind != TableColumn::Kind::LABEL &&
        !saysItsUnit(column.name)) {
        quantity = table.getQuantity();
    }
    TableMessage::quantityToUnits(quantity, column.unit);
    return column;
}

std::vector<TableColumn> getTableColumns(const TableMessage& table) {
    std::vector<TableColumn> columns;
    if (table.getEntityCount() != 0 && table.getLabelFieldCount() == 0) {
        columns.push_back({TableColumn::Kind::ROW_ENTITY, 0, DataType::HANDLE, "Entity", "", ""});
    }
    std::vector<TableColumn> fields;
    for (unsigned number = 0; table.getFieldHandle(number) != nullptr; ++number) {
        fields.push_back(getFieldColumn(table, number));
    }
    for (const auto kind : {TableColumn::Kind::LABEL, TableColumn::Kind::SHARED, TableColumn::Kind::VALUE}) {
        for (const TableColumn& field : fields) {
            if (field.kind == kind) {
                columns.push_back(field);
            }
        }
    }
    return columns;
}

std::string getValueText(const Data& value) {
    const DataHandle* handle = value.getType() == DataType::HANDLE ? handleIn(value) : nullptr;
    if (handle != nullptr && handle->getHandleType() == DataHandleType::ENTITY) {
        return handle->getQualifiedName(); // the cores 0 of two packages would read the same otherwise
    }
    std::string text;
    return value.toFormattedString(text) == 0 ? text : g_noValue;
}

std::string getCellText(const TableMessage& table, const EntityHandle* entity, std::size_t row,
                        const TableColumn& column) {
    if (column.kind == TableColumn::Kind::ROW_ENTITY) {
        return entity != nullptr ? entity->getQualifiedName() : g_noValue;
    }
    const Data* value = table.findCell(row, column.fieldNumber);
    return value != nullptr ? getValueText(*value) : g_noValue;
}

std::string getCellRawText(const TableMessage& table, const EntityHandle* entity, std::size_t row,
                           const TableColumn& column) {
    if (column.kind == TableColumn::Kind::ROW_ENTITY) {
        return entity != nullptr ? entity->getQualifiedName() : std::string();
    }
    const Data* value = table.findCell(row, column.fieldNumber);
    return value != nullptr ? rawText(*value) : std::string();
}

} // namespace pwr
