#pragma once

#include "common/writer/table_columns.h"
#include "common/writer/table_message.h"

#include <cstddef>
#include <string>
#include <vector>

namespace text_writer {

/// A delivered table as texts: the message's cells are gone after delivery, so the report keeps this.
struct TextTable {
    struct Column {
        std::string title; ///< with unit
        std::string group; ///< heading above several columns, "" for none
        bool isNumber;
        bool isLabel;
    };

    explicit TextTable(const pwr::TableMessage& table);

    std::string title;
    std::vector<std::string> facts; ///< shared fields of a table that also has rows: "Title: value"
    std::vector<Column> columns;
    std::vector<std::string> cells; ///< row after row
    std::vector<std::string> preNotes;
    std::vector<std::string> postNotes;
};

/// Number of characters that a text takes on a line.
std::size_t displayWidth(const std::string& text);

/// Breaks a text at blanks so that its lines have at most width characters where words permit; keeps line ends.
std::vector<std::string> wrapText(const std::string& text, std::size_t width);

/// The columns as aligned lines: numbers right, texts left, titles wrapped when the line would be too wide. What is
/// wider still is cut into blocks of columns that repeat the labels, never into broken lines.
std::string layOutColumns(const TextTable& table, std::size_t lineWidth);

} // namespace text_writer
