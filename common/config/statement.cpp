#include "common/config/statement.h"

#include <cstring>

namespace pwr {

namespace {

constexpr std::string_view BYTE_ORDER_MARK = "\xEF\xBB\xBF";

bool isBlank(char character) noexcept {
    return character == ' ' || character == '\n' || character == '\r' || character == '\t';
}

} // namespace

std::string_view trimBlanks(std::string_view text) noexcept {
    const char* first = text.data();
    const char* last = first + text.size();
    while (first != last && isBlank(*first)) {
        ++first;
    }
    while (first != last && isBlank(last[-1])) {
        --last;
    }
    return {first, static_cast<std::size_t>(last - first)};
}

bool ListItems::next(std::string_view& item) noexcept {
    while (!m_rest.empty()) {
        const std::size_t comma = m_rest.find(',');
        item = trimBlanks(m_rest.substr(0, comma));
        m_rest.remove_prefix(comma == std::string_view::npos ? m_rest.size() : comma + 1);
        if (!item.empty()) {
            return true;
        }
    }
    return false;
}

StatementReader::StatementReader(std::string_view text) noexcept {
    if (text.starts_with(BYTE_ORDER_MARK)) {
        text.remove_prefix(BYTE_ORDER_MARK.size());
    }
    m_position = text.data();
    m_end = m_position + text.size();
}

StatementReader::Result StatementReader::next(Statement& statement) noexcept {
    while (m_position != m_end) {
        const auto rest = static_cast<std::size_t>(m_end - m_position);
        const char* const lineEnd = static_cast<const char*>(std::memchr(m_position, '\n', rest));
        std::string_view line(m_position,
                              lineEnd == nullptr ? rest : static_cast<std::size_t>(lineEnd - m_position));
        m_position = lineEnd == nullptr ? m_end : lineEnd + 1;
        ++m_lineNumber;

        line = trimBlanks(line.substr(0, line.find('#')));
        const std::size_t equals = line.find('=');
        if (equals == std::string_view::npos) {
            continue;
        }
        statement.text = line;
        statement.lineNumber = m_lineNumber;
        return split_i(statement, equals) ? Result::STATEMENT : Result::MALFORMED;
    }
    return Result::END;
}

bool StatementReader::split_i(Statement& statement, std::size_t equals) noexcept {
    const std::string_view line = statement.text;
    // Up to the first "=" only: so none can slip into a field, and F5 ends at it whatever the value holds.
    std::string_view head = line.substr(0, equals);
    for (std::size_t field = 0; field + 2 < Statement::FIELD_COUNT; ++field) {
        const std::size_t delimiter = head.find('_');
        if (delimiter == std::string_view::npos) {
            m_problem = R"(fewer than four "_" before the first "="; F1_F2_F3_F4_F5=VALUE expected)";
            return false;
        }
        statement.fields[field] = head.substr(0, delimiter);
        head.remove_prefix(delimiter + 1);
    }
    statement.fields[Statement::VALUE - 1] = head;
    statement.fields[Statement::VALUE] = line.substr(equals + 1);
    for (std::size_t field = 0; field < Statement::VALUE; ++field) {
        if (statement.fields[field].empty()) {
            m_problem = R"(a field before the first "=" is empty; F1_F2_F3_F4_F5=VALUE expected)";
            return false;
        }
    }
    return true;
}

} // namespace pwr
