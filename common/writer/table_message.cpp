#include "common/writer/table_message.h"

#include "common/model/entity_handle.h"
#include "common/model/field.h"
#include "common/model/state.h"
#include "common/plugin/logger.h"
#include "common/values/quantity.h"
#include "common/writer/table_message_impl.h"

#include <algorithm>

namespace pwr {

namespace {

// What a message without state of its own shows.
const std::vector<const EntityHandle*> g_noEntities;
const std::vector<const DataHandle*> g_noHandles;
const std::string g_noText;

/// Makes the handle of a column from a description that is neither a field's nor a state's: its texts count.
const DataHandle* makePlainField(const Description& description, DataType type) {
    FieldDescription texts(description.getName(), description.getShortName(), type);
    texts.setFieldName(description.getFieldName());
    texts.setDescription(description.getDescription());
    texts.setHeader(description.getHeader());
    return Field::create(texts);
}

} // namespace

bool TableMessage::Impl::findNumber(const DataHandle* handle, unsigned& number) const {
    if (handle == nullptr) {
        return false;
    }
    const auto found = std::lower_bound(numbers.begin(), numbers.end(), std::make_pair(handle->getId(), 0U));
    if (found == numbers.end() || found->first != handle->getId()) {
        return false;
    }
    number = found->second;
    return true;
}

TableMessage::TableMessage(const std::string& title, const Quantity* quantity)
    : m_title(title), m_quantity(quantity), m_impl(std::make_unique<Impl>()) {}

TableMessage::TableMessage(const TableMessage* source)
    : m_title(source != nullptr ? source->m_title : g_noText),
      m_quantity(source != nullptr ? source->m_quantity : nullptr) {
    if (source != nullptr) {
        addParentMessage(source->getMessageId());
    }
}

TableMessage::~TableMessage() = default;

MessageType TableMessage::getMessageType() const {
    return MessageType::TABLE;
}

int TableMessage::addEntity(const EntityHandle* entity) {
    if (entity == nullptr || !m_impl) {
        return 1;
    }
    if (isCreated()) {
        logWarning("WARNING: Can't add new EntityHandle to table after table is created\n");
        return 1;
    }
    m_impl->rows.add(entity);
    return 0;
}

int TableMessage::addField(const Description& description, DataType type, bool shared) {
    return addDescription_i(description, type, nullptr, shared);
}

int TableMessage::addField(const Description& description, DataType type, const Formatter* formatter,
                           bool shared) {
    return addDescription_i(description, type, formatter, shared);
}

int TableMessage::addField(const std::string& name, DataType type, bool shared) {
    return addDescription_i(Description(name, ""), type, nullptr, shared);
}

int TableMessage::addField(const std::string& name, DataType type, const Formatter* formatter, bool shared) {
    return addDescription_i(Description(name, ""), type, formatter, shared);
}

int TableMessage::addField(const Field* field, bool shared) {
    return addField(field, nullptr, shared);
}

int TableMessage::addField(const Field* field, const Formatter* formatter, bool shared) {
    return addField_i(field, field != nullptr ? field->getDataType() : DataType::NONE, formatter, shared);
}

int TableMessage::addDescription_i(const Description& description, DataType type, const Formatter* formatter,
                                   bool shared) {
    if (isCreated() || !m_impl) {
        return addField_i(nullptr, type, formatter, shared); // refuses before a handle is made for nothing
    }
    const DataHandle* handle = nullptr;
    if (description.getType() == DescriptionType::STATE) {
        const auto* state = dynamic_cast<const StateDescription*>(&description);
        handle = state != nullptr ? State::create(*state) : nullptr;
        if (handle == nullptr) {
            logWarning("WARNING: Could not get state description\n");
            return 1;
        }
    } else if (const auto* field = dynamic_cast<const FieldDescription*>(&description)) {
        handle = Field::create(*field);
    } else {
        handle = makePlainField(description, type);
    }
    return addField_i(handle, type, formatter, shared);
}

int TableMessage::addField_i(const DataHandle* handle, DataType type, const Formatter* formatter,
                             bool shared) {
    if (isCreated()) {
        logWarning("WARNING: May not add field once table %s is created\n", m_title.c_str());
        return 1;
    }
    if (handle == nullptr || !m_impl) {
        return 1;
    }
    unsigned number = 0;
    if (m_impl->findNumber(handle, number)) {
        return 0;
    }
    number = static_cast<unsigned>(m_impl->columns.size());
    auto& handles = shared ? m_impl->sharedHandles : m_impl->rowHandles;
    const auto* field = dynamic_cast<const Field*>(handle);
    m_impl->columns.push_back({handle, type,
                               std::unique_ptr<Formatter>(formatter ? formatter->clone() : nullptr),
                               field != nullptr ? field->getQuantity() : nullptr, shared, handles.size()});
    handles.push_back(handle);
    const auto entry = std::make_pair(handle->getId(), number);
    m_impl->numbers.insert(std::upper_bound(m_impl->numbers.begin(), m_impl->numbers.end(), entry), entry);
    return 0;
}

int TableMessage::setLabelFieldCount(unsigned count) {
    if (!m_impl) {
        return 1;
    }
    m_impl->labelFields = count;
    return 0;
}

unsigned TableMessage::getLabelFieldCount() const {
    return m_impl ? std::min(m_impl->labelFields, getFieldCount()) : 0;
}

int TableMessage::createTable() {
    if (!m_impl || m_impl->columns.empty()) {
        logWarning("WARNING: Can't create empty table %s\n", m_title.c_str());
        return 1;
    }
    if (isCreated()) {
        return 1;
    }
    std::vector<Data> row;
    std::vector<Data>& cells = m_impl->cells;
    for (const Impl::Column& column : m_impl->columns) {
        Data cell(column.type);
        if (column.formatter) {
            cell.setCustomFormatter(*column.formatter);
        }
        (column.shared ? cells : row).push_back(cell);
    }
    m_impl->rows.freeze();
    const std::size_t rowCount = m_impl->rowCount();
    cells.reserve(cells.size() + rowCount * row.size());
    for (std::size_t i = 0; i < rowCount; ++i) {
        cells.insert(cells.end(), row.begin(), row.end());
    }
    m_impl->marks.assign(cells.size(), 0);
    return 0;
}

bool TableMessage::isCreated() const {
    return m_impl && m_impl->isCreated();
}

std::size_t TableMessage::getRowCount() const {
    return m_impl ? m_impl->rowCount() : 0;
}

unsigned TableMessage::getFieldCount() const {
    return getHandleCount();
}

unsigned TableMessage::getSharedFieldCount() const {
    return getSharedHandleCount();
}

unsigned TableMessage::getHandleCount() const {
    return static_cast<unsigned>(handleEnd() - handleBegin());
}

unsigned TableMessage::getSharedHandleCount() const {
    return static_cast<unsigned>(sharedHandleEnd() - sharedHandleBegin());
}

unsigned TableMessage::getEntityCount() const {
    return static_cast<unsigned>(entityEnd() - entityBegin());
}

TableMessage::EntityIterator TableMessage::entityBegin() const {
    return m_impl ? m_impl->rows.entities().begin() : g_noEntities.begin();
}

TableMessage::EntityIterator TableMessage::entityEnd() const {
    return m_impl ? m_impl->rows.entities().end() : g_noEntities.end();
}

TableMessage::HandleIterator TableMessage::handleBegin() const {
    return (m_impl ? m_impl->rowHandles : g_noHandles).begin();
}

TableMessage::HandleIterator TableMessage::handleEnd() const {
    return (m_impl ? m_impl->rowHandles : g_noHandles).end();
}

TableMessage::HandleIterator TableMessage::sharedHandleBegin() const {
    return (m_impl ? m_impl->sharedHandles : g_noHandles).begin();
}

TableMessage::HandleIterator TableMessage::sharedHandleEnd() const {
    return (m_impl ? m_impl->sharedHandles : g_noHandles).end();
}

const DataHandle* TableMessage::getFieldHandle(unsigned number) const {
    return m_impl && number < m_impl->columns.size() ? m_impl->columns[number].handle : nullptr;
}

DataType TableMessage::getFieldType(unsigned number) const {
    return m_impl && number < m_impl->columns.size() ? m_impl->columns[number].type : DataType::NONE;
}

bool TableMessage::isSharedField(unsigned number) const {
    return m_impl && number < m_impl->columns.size() && m_impl->columns[number].shared;
}

const Quantity* TableMessage::getFieldQuantity(unsigned number) const {
    return m_impl && number < m_impl->columns.size() ? m_impl->columns[number].quantity : nullptr;
}

bool TableMessage::findFieldNumber(const DataHandle* field, unsigned& number) const {
    return m_impl && m_impl->findNumber(field, number);
}

bool TableMessage::hasFieldHeaders() const {
    if (!m_impl) {
        return false;
    }
    return std::any_of(m_impl->columns.begin(), m_impl->columns.end(),
                       [](const Impl::Column& column) { return !column.handle->getFieldName().empty(); });
}

const EntityHandle* TableMessage::getRowEntity() const {
    return m_impl ? m_impl->rowEntity : nullptr;
}

int TableMessage::setRowEntity(const EntityHandle* entity) {
    if (!m_impl) {
        return 1;
    }
    m_impl->rowEntity = entity;
    return 0;
}

TableMessageType TableMessage::getTableMessageType() const {
    return m_impl ? m_impl->type : TableMessageType::SUMMARY;
}

int TableMessage::setTableMessageType(TableMessageType type) {
    if (!m_impl) {
        return 1;
    }
    m_impl->type = type;
    return 0;
}

const TextNotes* TableMessage::getTextNotes() const {
    return m_impl ? m_impl->notes : nullptr;
}

int TableMessage::setTextNotes(const TextNotes* notes) {
    if (!m_impl) {
        return 1;
    }
    m_impl->notes = notes;
    return 0;
}

int TableMessage::setSource(const std::string& featureTag, const std::string& containerTag,
                            const std::string& tableKey) {
    if (!m_impl) {
        return 1;
    }
    m_impl->featureTag = featureTag;
    m_impl->containerTag = containerTag;
    m_impl->tableKey = tableKey;
    return 0;
}

const std::string& TableMessage::getFeatureTag() const {
    return m_impl ? m_impl->featureTag : g_noText;
}

const std::string& TableMessage::getContainerTag() const {
    return m_impl ? m_impl->containerTag : g_noText;
}

const std::string& TableMessage::getTableKey() const {
    return m_impl ? m_impl->tableKey : g_noText;
}

bool TableMessage::quantityToUnits(const Quantity* quantity, std::string& units) {
    units.clear();
    if (quantity != nullptr) {
        units = quantity->toUnitsString();
    }
    return !units.empty();
}

} // namespace pwr
