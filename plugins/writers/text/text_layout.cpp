// Where the characters of a table go.

#include "plugins/writers/text/text_table.h"

#include <algorithm>

namespace text_writer {

namespace {

constexpr std::size_t g_gap = 2;        // blanks between columns
constexpr std::size_t g_titleLines = 3; // a title is wrapped into at most so many lines

/// A column made ready: its title's lines and its width.
struct Cut {
    const TextTable::Column* column;
    std::size_t index;
    std::vector<std::string> titleLines;
    std::size_t width;
};

void append(std::string& line, const std::string& text, std::size_t width, bool right) {
    const std::size_t pad = width - std::min(width, displayWidth(text));
    if (!line.empty()) {
        line.append(g_gap, ' ');
    }
    line += right ? std::string(pad, ' ') + text : text + std::string(pad, ' ');
}

std::string endLine(std::string line) {
    line.erase(line.find_last_not_of(' ') + 1);
    return line + "\n";
}

std::size_t widest(const std::vector<std::string>& lines) {
    std::size_t width = 0;
    for (const std::string& line : lines) {
        width = std::max(width, displayWidth(line));
    }
    return width;
}

std::size_t lineWidthOf(const std::vector<Cut>& cuts, std::size_t first, std::size_t last) {
    std::size_t width = 0;
    for (std::size_t i = first; i < last; ++i) {
        width += cuts[i].width + (i == first ? 0 : g_gap);
    }
    return width;
}

std::vector<Cut> cutColumns(const TextTable& table) {
    std::vector<Cut> cuts;
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        const std::string& title = table.columns[i].title;
        std::size_t width = displayWidth(title);
        for (std::size_t cell = i; cell < table.cells.size(); cell += table.columns.size()) {
            width = std::max(width, displayWidth(table.cells[cell]));
        }
        cuts.push_back({&table.columns[i], i, {title}, width});
    }
    return cuts;
}

/// Makes columns whose title is wider than their cells narrower by wrapping the title.
void wrapTitles(const TextTable& table, std::vector<Cut>& cuts) {
    for (Cut& cut : cuts) {
        std::size_t cells = 0;
        for (std::size_t cell = cut.index; cell < table.cells.size(); cell += table.columns.size()) {
            cells = std::max(cells, displayWidth(table.cells[cell]));
        }
        std::size_t width = std::max<std::size_t>(cells, 1);
        std::vector<std::string> lines = wrapText(cut.column->title, width);
        while (lines.size() > g_titleLines) {
            lines = wrapText(cut.column->title, ++width);
        }
        cut.width = std::max(cells, widest(lines));
        cut.titleLines = lines;
    }
}

/// The line of headings above the columns' titles; "" when no column has one.
std::string groupLine(const std::vector<Cut>& block) {
    std::string line;
    bool hasGroup = false;
    for (std::size_t first = 0; first < block.size();) {
        std::size_t last = first + 1;
        while (last < block.size() && block[last].column->group == block[first].column->group) {
            ++last;
        }
        const std::string& group = block[first].column->group;
        hasGroup = hasGroup || !group.empty();
        append(line, group, lineWidthOf(block, first, last), false);
        first = last;
    }
    return hasGroup ? endLine(line) : std::string();
}

std::string titleLines(const std::vector<Cut>& block) {
    std::size_t count = 0;
    for (const Cut& cut : block) {
        count = std::max(count, cut.titleLines.size());
    }
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        std::string line;
        for (const Cut& cut : block) {
            const std::size_t blanks = count - cut.titleLines.size(); // titles stand on the rule below them
            append(line, i < blanks ? std::string() : cut.titleLines[i - blanks], cut.width,
                   cut.column->isNumber);
        }
        text += endLine(line);
    }
    return text;
}

std::string layOutBlock(const TextTable& table, const std::vector<Cut>& block) {
    std::string text = groupLine(block) + titleLines(block);
    std::string rule;
    for (const Cut& cut : block) {
        append(rule, std::string(cut.width, '-'), cut.width, false);
    }
    text += endLine(rule);
    for (std::size_t row = 0; row < table.cells.size(); row += table.columns.size()) {
        std::string line;
        for (const Cut& cut : block) {
            append(line, table.cells[row + cut.index], cut.width, cut.column->isNumber);
        }
        text += endLine(line);
    }
    return text;
}

} // namespace

std::size_t displayWidth(const std::string& text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
        return (static_cast<unsigned char>(c) & 0xc0) !=
               0x80; // bytes that continue a character take no place
    }));
}

std::vector<std::string> wrapText(const std::string& text, std::size_t width) {
    std::vector<std::string> lines;
    std::string line;
    for (std::size_t at = 0; at < text.size();) {
        if (text[at] == '\n') {
            lines.push_back(line);
            line.clear();
            ++at;
            continue;
        }
        const std::size_t blanks = std::min(text.find_first_not_of(' ', at), text.size()) - at;
        const std::size_t end = std::min(text.find_first_of(" \n", at + blanks), text.size());
        const std::string word = text.substr(at + blanks, end - at - blanks);
        if (line.empty() || displayWidth(line) + blanks + displayWidth(word) <= width) {
            line += std::string(blanks, ' ') + word;
        } else {
            lines.push_back(line);
            line = word;
        }
        at = end;
    }
    lines.push_back(line);
    return lines;
}

std::string layOutColumns(const TextTable& table, std::size_t lineWidth) {
    if (table.cells.empty()) {
        return "(no data)\n";
    }
    std::vector<Cut> cuts = cutColumns(table);
    if (lineWidthOf(cuts, 0, cuts.size()) > lineWidth) {
        wrapTitles(table, cuts);
    }
    const auto values =
        std::find_if(cuts.begin(), cuts.end(), [](const Cut& cut) { return !cut.column->isLabel; });
    const std::vector<Cut> labels(cuts.begin(), values);
    std::string text;
    auto next = values;
    do {
        std::vector<Cut> block = labels;
        do {
            if (next != cuts.end()) {
                block.push_back(*next++);
            }
        } while (next != cuts.end() &&
                 lineWidthOf(block, 0, block.size()) + g_gap + next->width <= lineWidth);
        text += (text.empty() ? "" : "\n") + layOutBlock(table, block);
    } while (next != cuts.end());
    return text;
}

} // namespace text_writer
