#include "common/metrics/summary_table.h"

#include <algorithm>
#include <map>

#include "common/metrics/metric_fields.h"
#include "common/model/data_descriptor.h"
#include "common/model/entity_handle.h"
#include "common/model/field.h"
#include "common/values/quantity.h"
#include "common/writer/writer_stream.h"

namespace pwr {

namespace {

const TableInfo* findTableInfo(const Metric& metric, const char* key) {
    const auto& infos = MetricAccess::of(metric).tableInfos;
    const auto found = infos.find(key);
    return found != infos.end() ? &found->second : nullptr;
}

/// Row entities are roots: as children of the measured entity they would change that one's family.
const EntityHandle* makeRowEntity(const SummaryRow& row) {
    return EntityHandle::create(SummaryTable::nameOf(row), nullptr);
}

/// The handles of the container's rows, which all tables of that order share. Tables order rows by the ids of
/// their handles, so a measured entity carries its own row only as long as no made handle stands before it.
void makeContainerHandles(MetricAccess::Fields& fields) {
    fields.rowEntities.assign(fields.intake.rows().size(), nullptr);
    bool hasMade = false;
    for (const std::uint32_t number : fields.intake.rows().sorted()) {
        const RowTable::Row& row = fields.intake.rows()[number];
        hasMade = hasMade || row.descriptor != nullptr;
        fields.rowEntities[number] =
            hasMade ? makeRowEntity(SummaryRow{row.entity, row.descriptor}) : row.entity;
    }
}

} // namespace

SummaryTable::SummaryTable(Metric& metric, const char* key, const std::string& titleSuffix,
                           const Quantity* quantity)
    : m_metric(metric), m_key(key), m_info(findTableInfo(metric, key)), m_titleSuffix(titleSuffix),
      m_quantity(quantity) {}

bool SummaryTable::isTransposed() const {
    return m_info != nullptr && m_info->isTableTransposed();
}

std::string SummaryTable::nameOf(const SummaryRow& row) {
    std::string name = row.entity->getQualifiedName();
    if (row.descriptor != nullptr) {
        name += "/" + row.descriptor->getName();
    }
    return row.text.empty() ? name : name + "/" + row.text;
}

std::vector<SummaryRow> SummaryTable::containerRows(const Metric& metric,
                                                    const std::function<bool(std::uint32_t row)>& isShown) {
    const RowTable& table = MetricAccess::rowsOf(metric);
    std::vector<SummaryRow> rows;
    for (const std::uint32_t number : table.sorted()) {
        if (isShown(number)) {
            SummaryRow row{table[number].entity, table[number].descriptor};
            row.source = number;
            row.columnOrder = number;
            rows.push_back(row);
        }
    }
    return rows;
}

bool SummaryTable::isResolvable(const SummaryRow& row) {
    const DataHandle* found = nullptr;
    return row.descriptor == nullptr ||
           (DataHandle::get(row.descriptor->getId(), found) == 0 && found == row.descriptor);
}

void SummaryTable::makeHandle_i(SummaryRow& row) {
    if (row.handle != nullptr) {
        return;
    }
    if (m_textLabel != nullptr) {
        row.handle = makeRowEntity(row);
        return;
    }
    MetricAccess::Fields& fields = MetricAccess::of(m_metric);
    if (fields.rowEntities.size() != fields.intake.rows().size()) { // rows may come between reports
        makeContainerHandles(fields);
    }
    row.handle = fields.rowEntities[row.source];
}

void SummaryTable::addNotes_i(TableMessage& table) {
    MetricAccess::Fields& fields = MetricAccess::of(m_metric);
    TextNotes& notes = *fields.tableNotes.emplace_back(std::make_unique<TextNotes>(fields.notes));
    std::string note;
    if (m_info != nullptr && m_info->getPreTableNote(note)) {
        notes.addPreTableNote(note);
    }
    if (m_info != nullptr && m_info->getPostTableNote(note)) {
        notes.addPostTableNote(note);
    }
    table.setTextNotes(&notes);
}

void SummaryTable::addLabel_i(TableMessage& table, const Field* group, const char* name, DataType type) {
    if (group == nullptr) {
        table.addField(name, type, nullptr);
        return;
    }
    Description description(group->getName(), group->getShortName());
    description.setFieldName(group->getFieldName());
    description.setDescription(group->getDescription());
    description.setHeader(group->getHeader());
    table.addField(description, type, nullptr);
}

void SummaryTable::addLabels_i(TableMessage& table, const std::vector<SummaryRow>& rows) {
    m_hasDescriptors = std::any_of(rows.begin(), rows.end(),
                                   [](const SummaryRow& row) { return row.descriptor != nullptr; });
    addLabel_i(table, m_metric.getEntityGroupInfo(), "Entity", DataType::HANDLE);
    if (m_hasDescriptors) {
        addLabel_i(table, m_metric.getDescriptorGroupInfo(), m_descriptorLabel, DataType::HANDLE);
    }
    if (m_textLabel != nullptr) {
        addLabel_i(table, m_metric.getValueGroupInfo(), m_textLabel, DataType::STRING);
    }
    table.setLabelFieldCount(table.getFieldCount());
}

void SummaryTable::fillLabels_i(TableMessage& table, const SummaryRow& row) {
    unsigned field = 0;
    table.setFieldValueAt(row.handle, field++, Data(static_cast<const DataHandle&>(*row.entity)));
    if (row.descriptor != nullptr) {
        table.setFieldValueAt(row.handle, field, Data(static_cast<const DataHandle&>(*row.descriptor)));
    }
    field += m_hasDescriptors ? 1 : 0;
    if (m_textLabel != nullptr) {
        table.setFieldValueAt(row.handle, field, Data(row.text));
    }
}

void SummaryTable::addValueColumn_i(TableMessage& table, const SummaryColumn& column,
                                    const std::string& title) {
    if (column.quantity != nullptr) {
        table.addField(Field::create(FieldDescription(title, "", column.type, column.quantity)), nullptr);
    } else {
        table.addField(title, column.type, nullptr);
    }
}

int SummaryTable::deliver_i(TableMessage& table) {
    return MetricAccess::of(m_metric).stream->pushMessage(table) == 0 ? 0 : 1;
}

int SummaryTable::pushRows_i(TableMessage& table, std::vector<SummaryRow>& rows, const CellFunction& cell) {
    addLabels_i(table, rows);
    for (const SummaryColumn& column : m_columns) {
        addValueColumn_i(table, column, column.title);
    }
    for (SummaryRow& row : rows) {
        makeHandle_i(row);
        table.addEntity(row.handle);
    }
    if (table.createTable() != 0) {
        return 1;
    }
    const unsigned firstValue = table.getLabelFieldCount();
    for (const SummaryRow& row : rows) {
        fillLabels_i(table, row);
        for (unsigned column = 0; column < m_columns.size(); ++column) {
            if (const SummaryCell value = cell(row, column)) {
                table.setFieldValueAt(row.handle, firstValue + column, *value);
            }
        }
    }
    return deliver_i(table);
}

std::vector<SummaryTable::ColumnOwner> SummaryTable::columnOwners_i(
    const std::vector<SummaryRow>& rows) const {
    std::map<ColumnOwner, std::uint32_t> orders;
    for (const SummaryRow& row : rows) {
        const auto [entry, isNew] =
            orders.try_emplace({row.descriptor, row.text, row.value}, row.columnOrder);
        entry->second = std::min(entry->second, row.columnOrder);
    }
    std::vector<ColumnOwner> owners;
    owners.reserve(orders.size());
    for (const auto& [owner, order] : orders) {
        owners.push_back(owner);
    }
    std::sort(owners.begin(), owners.end(), [&](const ColumnOwner& left, const ColumnOwner& right) {
        return orders.at(left) < orders.at(right);
    });
    return owners;
}

int SummaryTable::pushTransposed_i(TableMessage& table, const std::vector<SummaryRow>& rows,
                                   const CellFunction& cell) {
    const std::vector<ColumnOwner> owners = columnOwners_i(rows);
    addLabel_i(table, m_metric.getEntityGroupInfo(), "Entity", DataType::HANDLE);
    table.setLabelFieldCount(1);
    std::map<ColumnOwner, unsigned> firstFields;
    for (const ColumnOwner& owner : owners) {
        std::string label = owner.text;
        if (owner.descriptor != nullptr) {
            label = owner.descriptor->getName() + (label.empty() ? "" : " " + label);
        }
        firstFields[owner] = table.getFieldCount();
        for (const SummaryColumn& column : m_columns) {
            addValueColumn_i(table, column, label.empty() ? column.title : label + column.transposedSuffix);
        }
    }
    for (const SummaryRow& row : rows) {
        table.addEntity(row.entity);
    }
    if (table.createTable() != 0) {
        return 1;
    }
    for (const SummaryRow& row : rows) {
        table.setFieldValueAt(row.entity, 0, Data(static_cast<const DataHandle&>(*row.entity)));
        const unsigned firstField = firstFields[{row.descriptor, row.text, row.value}];
        for (unsigned column = 0; column < m_columns.size(); ++column) {
            if (const SummaryCell value = cell(row, column)) {
                table.setFieldValueAt(row.entity, firstField + column, *value);
            }
        }
    }
    return deliver_i(table);
}

int SummaryTable::push(std::vector<SummaryRow>& rows, const CellFunction& cell) {
    MetricAccess::Fields& fields = MetricAccess::of(m_metric);
    std::string title;
    if (m_info == nullptr || !m_info->getTableTitle(title)) {
        title = fields.name + m_titleSuffix;
    }
    if (!m_subject.empty()) {
        title += " for " + m_subject;
    }
    TableMessage& table = *fields.tables.emplace_back(std::make_unique<TableMessage>(title, m_quantity));
    table.setMetricContainerId(fields.id);
    table.setSource(fields.featureTag, fields.containerTag, m_key);
    table.setTableMessageType(TableMessageType::SUMMARY);
    addNotes_i(table);
    return isTransposed() ? pushTransposed_i(table, rows, cell) : pushRows_i(table, rows, cell);
}

} // namespace pwr
