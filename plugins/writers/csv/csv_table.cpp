#include "plugins/writers/csv/csv_table.h"

#include "common/writer/table_columns.h"

#include <cstddef>
#include <vector>

namespace csv_writer {

namespace {

constexpr std::size_t g_longestPart = 60;

bool isSafe(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

} // namespace

std::string csvField(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) {
        return text;
    }
    std::string quoted = "\"";
    for (const char c : text) {
        quoted += c == '"' ? "\"\"" : std::string(1, c);
    }
    return quoted + "\"";
}

std::string csvText(const pwr::TableMessage& table) {
    const std::vector<pwr::TableColumn> columns = pwr::getTableColumns(table);
    std::string text;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        text += (i == 0 ? "" : ",") + csvField(columns[i].title());
    }
    text += "\n";
    if (table.getEntityCount() == 0 && table.validBegin() == table.validEnd()) {
        return text; // a table without entities has one row; without any value that row says nothing
    }
    auto entity = table.entityBegin();
    for (std::size_t row = 0; row < table.getRowCount(); ++row) {
        const pwr::EntityHandle* rowEntity = entity != table.entityEnd() ? *entity++ : nullptr;
        for (std::size_t i = 0; i < columns.size(); ++i) {
            text += (i == 0 ? "" : ",") + csvField(pwr::getCellRawText(table, rowEntity, row, columns[i]));
        }
        text += "\n";
    }
    return text;
}

std::string fileNamePart(const std::string& tag) {
    std::string part;
    for (const char c : tag.substr(0, g_longestPart)) {
        const bool mayStay = isSafe(c) || (c == '.' && !part.empty() && part.back() != '.');
        if (mayStay) {
            part += c;
        } else if (!part.empty() && part.back() != '-') {
            part += '-';
        }
    }
    while (!part.empty() && !isSafe(part.back())) {
        part.pop_back();
    }
    return part;
}

} // namespace csv_writer
