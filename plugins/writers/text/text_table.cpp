#include "plugins/writers/text/text_table.h"

#include "common/model/entity_handle.h"

namespace text_writer {

namespace {

/// Line ends and other control characters in a cell would break the table.
std::string onOneLine(std::string text) {
    for (char& c : text) {
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) {
            c = ' ';
        }
    }
    return text;
}

bool hasAnyValue(const pwr::TableMessage& table) {
    return table.getEntityCount() != 0 || table.validBegin() != table.validEnd();
}

} // namespace

TextTable::TextTable(const pwr::TableMessage& table) : title(onOneLine(table.getTitle())) {
    using Kind = pwr::TableColumn::Kind;
    if (const pwr::TextNotes* notes = table.getTextNotes()) {
        notes->getPreTableNotes(preNotes);
        notes->getPostTableNotes(postNotes);
    }
    std::vector<pwr::TableColumn> shown;
    for (const pwr::TableColumn& column : pwr::getTableColumns(table)) {
        if (column.kind == Kind::SHARED && table.getFieldCount() != 0) {
            facts.push_back(column.title() + ": " + pwr::getCellText(table, nullptr, 0, column));
            continue;
        }
        const bool isLabel = column.kind == Kind::LABEL || column.kind == Kind::ROW_ENTITY;
        columns.push_back({onOneLine(column.title()), onOneLine(column.group), column.isNumber(), isLabel});
        shown.push_back(column);
    }
    if (!hasAnyValue(table)) {
        return; // a table without entities has one row; without any value that row says nothing
    }
    auto entity = table.entityBegin();
    cells.reserve(table.getRowCount() * shown.size());
    for (std::size_t row = 0; row < table.getRowCount(); ++row) {
        const pwr::EntityHandle* rowEntity = entity != table.entityEnd() ? *entity++ : nullptr;
        for (const pwr::TableColumn& column : shown) {
            cells.push_back(onOneLine(pwr::getCellText(table, rowEntity, row, column)));
        }
    }
}

} // namespace text_writer
