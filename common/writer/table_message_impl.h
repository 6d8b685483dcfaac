#pragma once

#include "common/model/data_handle.h"
#include "common/values/data.h"
#include "common/values/formatter.h"
#include "common/writer/entity_rows.h"
#include "common/writer/table_message.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace pwr {

/// The state of a table. Cells stand in one vector: the shared fields, then row by row the per-entity fields.
/// The valid pairs follow from the marks, so they are only listed when somebody asks: filling stays two stores a cell.
struct TableMessage::Impl {
    struct Column {
        const DataHandle* handle;
        DataType type;
        std::unique_ptr<Formatter> formatter; ///< null: that of the type
        const Quantity* quantity;
        bool shared;
        std::size_t position; ///< among the fields of its kind
    };

    std::vector<Column> columns;
    std::vector<const DataHandle*> sharedHandles;
    std::vector<const DataHandle*> rowHandles;
    std::vector<std::pair<std::uint64_t, unsigned>> numbers; ///< (handle id, field number), ordered
    EntityRows rows;
    std::vector<Data> cells;
    std::vector<unsigned char> marks;
    mutable std::vector<std::pair<std::uint64_t, std::uint64_t>> valid;
    mutable bool validIsStale = false;

    TableMessageType type = TableMessageType::SUMMARY;
    const EntityHandle* rowEntity = nullptr;
    const TextNotes* notes = nullptr;
    unsigned labelFields = 0;
    std::string featureTag;
    std::string containerTag;
    std::string tableKey;

    bool isCreated() const { return !cells.empty(); }
    bool hasEntities() const { return !rows.entities().empty(); }
    std::size_t rowCount() const { return hasEntities() ? rows.entities().size() : 1; }
    std::size_t cellOf(const Column& column, std::size_t row) const {
        return column.shared ? column.position
                             : sharedHandles.size() + row * rowHandles.size() + column.position;
    }
    bool findNumber(const DataHandle* handle, unsigned& number) const;
    void listValid() const;
};

} // namespace pwr
