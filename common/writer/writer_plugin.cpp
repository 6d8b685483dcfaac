#include "common/writer/writer_plugin.h"

#include "common/model/data_handle.h"
#include "common/model/entity_handle.h"
#include "common/writer/table_columns.h"
#include "common/writer/table_message.h"
#include "common/writer/writer_census.h"

#include <iterator>
#include <utility>

pwr::WriterCensus pwr::g_writerCensus;

namespace {

constexpr std::pair<const char*, pwr::TableClass> g_tableClassGroups[] = {
    {"table-class:summary", pwr::TableClass::SUMMARY},
    {"table-class:over-time", pwr::TableClass::OVER_TIME},
    {"table-class:trace", pwr::TableClass::TRACE},
    {"table-class:static-info", pwr::TableClass::STATIC_INFO},
};

} // namespace

WriterPlugin::WriterPlugin(const std::string& name) : Plugin(name) {
    ++pwr::g_writerCensus.living;
    ++pwr::g_writerCensus.changes;
}

WriterPlugin::~WriterPlugin() {
    --pwr::g_writerCensus.living;
    ++pwr::g_writerCensus.changes;
}

int WriterPlugin::addCapability(PluginCapability* capability) {
    if (Plugin::addCapability(capability) != 0) {
        return 1;
    }
    for (const std::string& group : capability->getGroups()) {
        for (const auto& [name, tableClass] : g_tableClassGroups) {
            if (group == name) {
                m_tableClasses.insert(tableClass);
            }
        }
    }
    return 0;
}

bool WriterPlugin::flushContinuousResults(const pwr::SystemMetadata&) {
    return false;
}

int WriterPlugin::writeMessage(const pwr::MetricContainerInfoMessage&) {
    return 0;
}

int WriterPlugin::writeMessage(const pwr::Metric&) {
    return 0;
}

int WriterPlugin::writeMessage(const pwr::IdMessage&) {
    return 0;
}

int WriterPlugin::writeMessage(const pwr::SystemMessage&) {
    return 0;
}

int WriterPlugin::writeMessage(const pwr::TextMessage&) {
    return 0;
}

int WriterPlugin::writeMessage(const pwr::TableMessage&) {
    return 0;
}

void WriterPlugin::getColumnTitles(const pwr::TableMessage& table, std::deque<std::string>& titles) const {
    titles.clear();
    for (const pwr::TableColumn& column : pwr::getTableColumns(table)) {
        titles.push_back(column.title());
    }
}

void WriterPlugin::getRowValues(const pwr::TableMessage& table, std::deque<std::string>& values) const {
    values.clear();
    const std::vector<pwr::TableColumn> columns = pwr::getTableColumns(table);
    const auto entities = table.entityBegin();
    for (std::size_t row = 0; row < table.getRowCount(); ++row) {
        const pwr::EntityHandle* entity =
            table.getEntityCount() == 0 ? nullptr : *std::next(entities, static_cast<std::ptrdiff_t>(row));
        for (const pwr::TableColumn& column : columns) {
            values.push_back(pwr::getCellText(table, entity, row, column));
        }
    }
}

std::string WriterPlugin::getFieldNameFromHandle(const pwr::TableMessage& table, const pwr::EntityHandle*,
                                                 const pwr::DataHandle* field) const {
    unsigned number = 0;
    if (table.findFieldNumber(field, number)) {
        return pwr::getFieldColumn(table, number).title();
    }
    return field != nullptr ? field->getFieldName() : std::string();
}

std::string WriterPlugin::getFieldValueFromHandle(const pwr::TableMessage& table,
                                                  const pwr::EntityHandle* entity,
                                                  const pwr::DataHandle* field) const {
    const pwr::Data* value = nullptr;
    std::string text;
    return table.getFieldValue(entity, field, value) == 0 ? pwr::getValueText(*value) : "<N/A>";
}
