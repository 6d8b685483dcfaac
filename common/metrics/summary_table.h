#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "common/values/data.h"

namespace pwr {

class DataDescriptor;
class EntityHandle;
class Field;
class Metric;
class Quantity;
class TableInfo;
class TableMessage;

/// A row of a summary table before it is one: what it is about, and where its accumulator keeps the numbers.
struct SummaryRow {
    const EntityHandle* entity;
    const DataDescriptor* descriptor = nullptr;
    std::string text{};            // a state or an event, in tables that list those
    std::uint32_t source = 0;      // the container's row, or whatever the accumulator counts by
    std::uint32_t value = 0;       // the number of the state or event
    std::uint32_t columnOrder = 0; // where its columns stand when the table is transposed
    const EntityHandle* handle =
        nullptr; // carries the row in the table; made once, kept for tables of this order
};

/// A value column: "Residency (%)", or, one for each state when the table is transposed, "C6" + " (%)".
struct SummaryColumn {
    std::string title;
    std::string transposedSuffix;
    DataType type;
    const Quantity* quantity = nullptr; // of this column alone
};

/// An unset cell is one whose value is not known: writers print it as "<N/A>".
using SummaryCell = std::optional<Data>;

inline SummaryCell realCell(double value) {
    return std::isfinite(value) ? SummaryCell(Data(value)) : std::nullopt;
}

inline SummaryCell dataCell(const Data& value) {
    double real = 0.0;
    if (!value.isSet() || !value.isValid() ||
        (value.getType() == DataType::REAL && value.toReal(real) == 0 && !std::isfinite(real))) {
        return std::nullopt;
    }
    return value;
}

/// Builds a summary table in the form that the output configuration asks for, and pushes it. What all summaries
/// have in common stands here: title, notes, label columns, the transposed layout and the container's stamp.
/// Rows stand in the order in which they are given.
class SummaryTable {
public:
    SummaryTable(Metric& metric, const char* key, const std::string& titleSuffix, const Quantity* quantity);

    /// "for" whom the table is when it is not about the whole container.
    void setSubject(const std::string& subject) { m_subject = subject; }
    void setDescriptorLabel(const char* label) { m_descriptorLabel = label; }
    /// The rows have texts, listed under this label.
    void setTextLabel(const char* label) { m_textLabel = label; }
    void addColumn(const std::string& title, const std::string& transposedSuffix, DataType type,
                   const Quantity* quantity = nullptr) {
        m_columns.push_back({title, transposedSuffix, type, quantity});
    }

    [[nodiscard]] bool isTransposed() const;

    using CellFunction = std::function<SummaryCell(const SummaryRow& row, std::size_t column)>;

    /// Handles that the rows need are made and kept in them. 0 when the table reached the writers.
    int push(std::vector<SummaryRow>& rows, const CellFunction& cell);

    /// The container's rows that the accumulator wants to show, in table order.
    static std::vector<SummaryRow> containerRows(const Metric& metric,
                                                 const std::function<bool(std::uint32_t row)>& isShown);
    /// Whether the row's descriptor, if it has one, is still the one that its id stands for.
    static bool isResolvable(const SummaryRow& row);
    /// "core 0/C6", for messages.
    static std::string nameOf(const SummaryRow& row);

private:
    /// A column of a transposed table belongs to what its row was about.
    struct ColumnOwner {
        const DataDescriptor* descriptor;
        std::string text;
        std::uint32_t value; // different values may have one text

        bool operator<(const ColumnOwner& other) const {
            return std::tie(descriptor, text, value) < std::tie(other.descriptor, other.text, other.value);
        }
    };

    void addNotes_i(TableMessage& table);
    void addLabel_i(TableMessage& table, const Field* group, const char* name, DataType type);
    void addValueColumn_i(TableMessage& table, const SummaryColumn& column, const std::string& title);
    int pushRows_i(TableMessage& table, std::vector<SummaryRow>& rows, const CellFunction& cell);
    int pushTransposed_i(TableMessage& table, const std::vector<SummaryRow>& rows, const CellFunction& cell);
    void addLabels_i(TableMessage& table, const std::vector<SummaryRow>& rows);
    void fillLabels_i(TableMessage& table, const SummaryRow& row);
    void makeHandle_i(SummaryRow& row);
    std::vector<ColumnOwner> columnOwners_i(const std::vector<SummaryRow>& rows) const;
    int deliver_i(TableMessage& table);

    Metric& m_metric;
    const char* m_key;
    const TableInfo* m_info; // null: defaults
    std::string m_titleSuffix;
    std::string m_subject;
    const Quantity* m_quantity;
    const char* m_descriptorLabel = "Descriptor";
    const char* m_textLabel = nullptr;
    bool m_hasDescriptors = false;
    std::vector<SummaryColumn> m_columns;
};

} // namespace pwr
