#pragma once

#include "common/export.h"
#include "common/values/data.h"
#include "common/writer/writer_message.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace pwr {

class Attribute;
class DataHandle;
class Description;
class EntityHandle;
class Field;
class Formatter;
class Quantity;

/// A result table: columns are fields (a description, a data type, perhaps a formatter), rows are entities.
///
/// Life:     add entities and fields, createTable() (the shape is frozen), set cells, push. The stream empties the
///           cells after delivery, and the same table can be filled again.
/// Rows:     in the order of the entities' ids, the same in every run; a table without entities has one row.
/// Columns:  a shared field has one value for the table, a per-entity field one value for each row. Both kinds are
///           numbered together from 0 on in the order of addField().
/// Labels:   what names a row. A table whose row entities only carry the rows (one for each entity and state, say)
///           puts the names in its first per-entity fields (of type HANDLE or STRING) and says how many with
///           setLabelFieldCount(n). A table without label fields is printed with its entities' qualified names as
///           first column. So a writer never prints the row entity twice.
/// Units:    a Field's own quantity, else the table's quantity for numbers that are not labels, goes into the
///           column's title. Formatters of cells should therefore carry no unit.
/// Failure:  operations that return int return 0, or 1 with a warning; the table keeps its state.
/// Owns:     its formatters (clones) and cells; not handles, quantity and notes.
class KRCOMMON_API TableMessage : public WriterMessage {
public:
    using EntityIterator = std::vector<const EntityHandle*>::const_iterator;
    using HandleIterator = std::vector<const DataHandle*>::const_iterator;
    using ValidIterator = std::vector<std::pair<std::uint64_t, std::uint64_t>>::const_iterator;

    TableMessage(const std::string& title, const Quantity* quantity);
    TableMessage(const TableMessage&) = delete;
    TableMessage& operator=(const TableMessage&) = delete;
    ~TableMessage() override;
    MessageType getMessageType() const override;

    // --- shape, before createTable() ---

    /// Adds a row; null fails, an entity that is already there changes nothing.
    int addEntity(const EntityHandle* entity);

    /// Adds a column. A description or a name makes a new handle with every call; a Field that is already a column
    /// keeps its number. A state description makes a state column. The formatter is copied, null means that of the
    /// type. Fetch the new column's handle with getFieldHandle(number).
    int addField(const Description& description, DataType type, bool shared);
    int addField(const Description& description, DataType type, const Formatter* formatter,
                 bool shared = false);
    int addField(const std::string& name, DataType type, bool shared);
    int addField(const std::string& name, DataType type, const Formatter* formatter, bool shared = false);
    int addField(const Field* field, bool shared);
    int addField(const Field* field, const Formatter* formatter, bool shared = false);

    /// Says that the first count per-entity fields name the rows.
    int setLabelFieldCount(unsigned count);
    unsigned getLabelFieldCount() const;

    /// Builds the cells. Fails for a table without any field and for a table that is created already.
    int createTable();

    // --- cells ---

    /// Forgets all values; shape and formatters stay.
    int resetData();

    /// Sets a shared field, or a field of the only row of a table without entities. The value's type must be the
    /// field's; only its payload is taken, not a formatter of its own.
    int setFieldValue(const DataHandle* field, const Data& value);
    int setFieldValue(const EntityHandle* entity, const DataHandle* field, const Data& value);
    /// The same by field number, without looking for the handle; a null entity reaches what the two-argument
    /// form reaches.
    int setFieldValueAt(const EntityHandle* entity, unsigned number, const Data& value);

    /// Points value to the cell, valid until the cell is set or reset. A cell without value fails.
    int getFieldValue(const DataHandle* field, const Data*& value) const;
    int getFieldValue(const EntityHandle* entity, const DataHandle* field, const Data*& value) const;
    int getFieldValueAt(const EntityHandle* entity, unsigned number, const Data*& value) const;
    int getFieldAsString(const DataHandle* field, std::string& text) const;
    int getFieldAsString(const EntityHandle* entity, const DataHandle* field, std::string& text) const;

    /// The cell of the row with this index (in the order of entityBegin()) and field number: null when it has no
    /// value or does not exist. Warns of nothing: this is what writers walk a table with.
    const Data* findCell(std::size_t row, unsigned number) const;

    /// Reads an attribute of the entity (or other handle that carries attributes) that a HANDLE cell holds.
    int getFieldAttributeValue(const EntityHandle* entity, const DataHandle* field,
                               const Attribute* attribute, const Data*& value) const;

    // --- what is there ---

    bool isCreated() const;
    /// Number of rows: that of the entities, 1 without entities.
    std::size_t getRowCount() const;
    unsigned getFieldCount() const; ///< per-entity fields
    unsigned getSharedFieldCount() const;
    unsigned getHandleCount() const; ///< handles of per-entity fields
    unsigned getSharedHandleCount() const;
    unsigned getEntityCount() const;
    EntityIterator entityBegin() const;
    EntityIterator entityEnd() const;
    HandleIterator handleBegin() const;
    HandleIterator handleEnd() const;
    HandleIterator sharedHandleBegin() const;
    HandleIterator sharedHandleEnd() const;

    /// The filled cells as (entity id, handle id), ordered by both. Cells of no entity (shared fields, the only
    /// row of a table without entities) stand under the entity id with all bits set. Iterators hold until the
    /// next change of a cell.
    ValidIterator validBegin() const;
    ValidIterator validEnd() const;

    /// By field number, over both kinds of field: the handle (null when there is none), type, kind, own quantity.
    const DataHandle* getFieldHandle(unsigned number) const;
    DataType getFieldType(unsigned number) const;
    bool isSharedField(unsigned number) const;
    const Quantity* getFieldQuantity(unsigned number) const;
    /// The number of a field's handle; false when it is no field of this table.
    bool findFieldNumber(const DataHandle* field, unsigned& number) const;

    const std::string& getTitle() const { return m_title; }
    const Quantity* getQuantity() const { return m_quantity; }
    /// False when every field's name is empty, so that a head line would say nothing.
    bool hasFieldHeaders() const;

    const EntityHandle* getRowEntity() const;
    int setRowEntity(const EntityHandle* entity);
    TableMessageType getTableMessageType() const;
    int setTableMessageType(TableMessageType type);
    /// Notes to print with the table: not owned, they must live until the table is pushed. Null: none.
    const TextNotes* getTextNotes() const;
    int setTextNotes(const TextNotes* notes);

    /// Where the table stands in the output configuration: feature-switch tag, metric-container tag and table key
    /// (such as "MIN-MAX-AVG"). Writers group, order and name files by them; all may be empty.
    int setSource(const std::string& featureTag, const std::string& containerTag,
                  const std::string& tableKey);
    const std::string& getFeatureTag() const;
    const std::string& getContainerTag() const;
    const std::string& getTableKey() const;

    /// The unit of a quantity for column titles; false, and units empty, when there is none.
    static bool quantityToUnits(const Quantity* quantity, std::string& units);

protected:
    /// A message about the same thing: title and quantity of the source, which becomes its parent, and no state of
    /// its own: it has no fields and cells and never gets any.
    explicit TableMessage(const TableMessage* source);

private:
    struct Impl;

    int addField_i(const DataHandle* handle, DataType type, const Formatter* formatter, bool shared);
    int addDescription_i(const Description& description, DataType type, const Formatter* formatter,
                         bool shared);
    int findCell_i(const EntityHandle* entity, unsigned number, std::size_t& cell, bool writing) const;
    Data* getDataToSet_i(unsigned number);
    Data* getDataToSet_i(const EntityHandle* entity, unsigned number);
    void addValidValue_i(const Data* cell);

    std::string m_title;
    const Quantity* m_quantity;
    std::unique_ptr<Impl> m_impl;
};

} // namespace pwr
