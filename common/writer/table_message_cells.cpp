// The cells of a table: finding, setting and reading them.

#include "common/model/attribute.h"
#include "common/model/data_descriptor.h"
#include "common/model/entity_handle.h"
#include "common/model/event.h"
#include "common/model/state.h"
#include "common/plugin/logger.h"
#include "common/writer/table_message.h"
#include "common/writer/table_message_impl.h"

#include <algorithm>
#include <limits>

namespace pwr {

namespace {

constexpr std::uint64_t g_noEntityId = std::numeric_limits<std::uint64_t>::max();
const std::vector<std::pair<std::uint64_t, std::uint64_t>> g_noPairs;

const char* nameOf(const DataHandle* handle) {
    return handle != nullptr ? handle->getName().c_str() : "(none)";
}

} // namespace

void TableMessage::Impl::listValid() const {
    valid.clear();
    const auto list = [this](std::uint64_t entityId, bool shared, std::size_t row) {
        for (const auto& [handleId, number] : numbers) {
            const Column& column = columns[number];
            if (column.shared == shared && marks[cellOf(column, row)] != 0) {
                valid.emplace_back(entityId, handleId);
            }
        }
    };
    if (isCreated()) {
        std::size_t row = 0;
        for (const EntityHandle* entity : rows.entities()) {
            list(entity->getId(), false, row++);
        }
        list(g_noEntityId, true, 0);
        if (!hasEntities()) {
            list(g_noEntityId, false, 0);
            std::sort(valid.begin(), valid.end());
        }
    }
    validIsStale = false;
}

int TableMessage::resetData() {
    if (!isCreated()) {
        logWarning("WARNING: Can't reset table data before table is created\n");
        return 1;
    }
    std::fill(m_impl->marks.begin(), m_impl->marks.end(), static_cast<unsigned char>(0));
    m_impl->valid.clear();
    m_impl->validIsStale = false;
    return 0;
}

/// Where a field's cell stands. The table is created; null entity: shared field, or the only row.
int TableMessage::findCell_i(const EntityHandle* entity, unsigned number, std::size_t& cell,
                             bool writing) const {
    if (number >= m_impl->columns.size()) {
        logWarning("WARNING: Could not find field %u in table %s\n", number, m_title.c_str());
        return 1;
    }
    const Impl::Column& column = m_impl->columns[number];
    if (column.shared && entity != nullptr) {
        logWarning("WARNING: Entity specified in request for field where not relevant %s\n", m_title.c_str());
        return 1;
    }
    std::size_t row = 0;
    if (!column.shared && (entity != nullptr || m_impl->hasEntities())) {
        row = entity != nullptr ? m_impl->rows.find(entity) : EntityRows::NO_ROW;
    }
    if (row == EntityRows::NO_ROW) {
        if (writing) {
            logWarning("WARNING: No such entity %s found in table %s\n", nameOf(entity), m_title.c_str());
        } else {
            logWarning("WARNING: Entity %s not found in table %s\n", nameOf(entity), m_title.c_str());
        }
        return 1;
    }
    cell = m_impl->cellOf(column, row);
    return 0;
}

int TableMessage::setFieldValue(const DataHandle* field, const Data& value) {
    return setFieldValue(nullptr, field, value);
}

int TableMessage::setFieldValue(const EntityHandle* entity, const DataHandle* field, const Data& value) {
    unsigned number = 0;
    if (isCreated() && !m_impl->findNumber(field, number)) {
        logWarning("WARNING: Unknown field %s in table %s\n", nameOf(field), m_title.c_str());
        return 1;
    }
    return setFieldValueAt(entity, number, value);
}

int TableMessage::setFieldValueAt(const EntityHandle* entity, unsigned number, const Data& value) {
    if (!isCreated()) {
        logWarning("WARNING: Can't set table field before table is created\n");
        return 1;
    }
    Data* cell = entity != nullptr ? getDataToSet_i(entity, number) : getDataToSet_i(number);
    if (cell == nullptr) {
        return 1;
    }
    if (cell->getType() != value.getType() && cell->getType() != DataType::NONE) {
        // Asked here and not left to the value, which would lose what the cell holds.
        logWarning("WARNING: Invalid attempt to initialize data of the wrong type (%d != %d)\n",
                   static_cast<int>(cell->getType()), static_cast<int>(value.getType()));
        return 1;
    }
    if (cell->setValue(value) != 0) {
        return 1;
    }
    addValidValue_i(cell);
    return 0;
}

Data* TableMessage::getDataToSet_i(unsigned number) {
    return getDataToSet_i(nullptr, number);
}

Data* TableMessage::getDataToSet_i(const EntityHandle* entity, unsigned number) {
    std::size_t cell = 0;
    return findCell_i(entity, number, cell, true) == 0 ? &m_impl->cells[cell] : nullptr;
}

void TableMessage::addValidValue_i(const Data* cell) {
    m_impl->marks[static_cast<std::size_t>(cell - m_impl->cells.data())] = 1;
    m_impl->validIsStale = true;
}

int TableMessage::getFieldValue(const DataHandle* field, const Data*& value) const {
    return getFieldValue(nullptr, field, value);
}

int TableMessage::getFieldValue(const EntityHandle* entity, const DataHandle* field,
                                const Data*& value) const {
    unsigned number = 0;
    if (isCreated() && !m_impl->findNumber(field, number)) {
        logWarning("WARNING: Unknown field %s in table %s\n", nameOf(field), m_title.c_str());
        return 1;
    }
    return getFieldValueAt(entity, number, value);
}

int TableMessage::getFieldValueAt(const EntityHandle* entity, unsigned number, const Data*& value) const {
    if (!isCreated()) {
        logWarning("WARNING: Attempt to retrieve value from uncreated table %s", m_title.c_str());
        return 1;
    }
    std::size_t cell = 0;
    if (findCell_i(entity, number, cell, false) != 0) {
        return 1;
    }
    if (m_impl->marks[cell] == 0) {
        logWarning("WARNING: No data in table yet %s\n", m_title.c_str());
        return 1;
    }
    value = &m_impl->cells[cell];
    return 0;
}

int TableMessage::getFieldAsString(const DataHandle* field, std::string& text) const {
    return getFieldAsString(nullptr, field, text);
}

int TableMessage::getFieldAsString(const EntityHandle* entity, const DataHandle* field,
                                   std::string& text) const {
    const Data* value = nullptr;
    return getFieldValue(entity, field, value) == 0 ? value->toFormattedString(text) : 1;
}

const Data* TableMessage::findCell(std::size_t row, unsigned number) const {
    if (!isCreated() || number >= m_impl->columns.size() || row >= m_impl->rowCount()) {
        return nullptr;
    }
    const std::size_t cell = m_impl->cellOf(m_impl->columns[number], row);
    return m_impl->marks[cell] != 0 ? &m_impl->cells[cell] : nullptr;
}

int TableMessage::getFieldAttributeValue(const EntityHandle* entity, const DataHandle* field,
                                         const Attribute* attribute, const Data*& value) const {
    const Data* cell = nullptr;
    if (getFieldValue(entity, field, cell) != 0) {
        return 1;
    }
    if (cell->getType() != DataType::HANDLE) {
        logWarning("WARNING: Attempt to retrieve an attribute from a simple type in %s\n", m_title.c_str());
        return 1;
    }
    const DataHandle* handle = nullptr;
    if (cell->toHandle(handle) != 0) {
        logWarning("WARNING: Could not convert to handle type in %s\n", m_title.c_str());
        return 1;
    }
    const auto* carrier = dynamic_cast<const AttributeValueManager*>(handle);
    const Data* found =
        carrier != nullptr && attribute != nullptr ? carrier->getAttributeValue(attribute) : nullptr;
    if (found == nullptr) {
        logWarning("WARNING: Error getting state/event/entity/dataDescriptor and attribute (%p %p %p %p %p) "
                   "from table %s\n",
                   static_cast<const void*>(dynamic_cast<const State*>(handle)),
                   static_cast<const void*>(dynamic_cast<const Event*>(handle)),
                   static_cast<const void*>(dynamic_cast<const EntityHandle*>(handle)),
                   static_cast<const void*>(dynamic_cast<const DataDescriptor*>(handle)),
                   static_cast<const void*>(attribute), m_title.c_str());
        return 1;
    }
    value = found;
    return 0;
}

TableMessage::ValidIterator TableMessage::validBegin() const {
    if (!m_impl) {
        return g_noPairs.begin();
    }
    if (m_impl->validIsStale) {
        m_impl->listValid();
    }
    return m_impl->valid.begin();
}

TableMessage::ValidIterator TableMessage::validEnd() const {
    if (!m_impl) {
        return g_noPairs.end();
    }
    if (m_impl->validIsStale) {
        m_impl->listValid();
    }
    return m_impl->valid.end();
}

} // namespace pwr
