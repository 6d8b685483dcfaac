#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "common/export.h"

namespace pwr {

/// One line of a configuration text: F1 "_" F2 "_" F3 "_" F4 "_" F5 "=" value.
/// Everything refers into the text that was split, which must outlive it.
struct Statement {
    static constexpr std::size_t FIELD_COUNT = 6;
    static constexpr std::size_t VALUE = 5;

    std::array<std::string_view, FIELD_COUNT> fields; ///< F1 to F5, then the value, which may be empty
    std::string_view text;                            ///< the line without comment and surrounding blanks
    std::size_t lineNumber = 0;                       ///< from 1
};

/// Splits a configuration text into statements; both configuration languages share it.
/// A "#" and what follows it is a comment; blanks, tabs and carriage returns around a line do not count; a line
/// without "=" is no statement and is passed over. The fields F1 to F5 are never empty and F1 to F4 hold no "=":
/// the first four "_" stand before the first "=". Fields are taken as they are, blanks included.
/// Costs no allocation and touches each byte of the text a fixed number of times.
class KRCOMMON_API StatementReader {
public:
    enum class Result { STATEMENT, MALFORMED, END };

    /// The text is not copied. A byte order mark at its beginning is skipped.
    explicit StatementReader(std::string_view text) noexcept;

    /// Goes on to the next statement. MALFORMED leaves the line's text and number in `statement`, and
    /// getProblem() says what is wrong with it; reading can go on.
    Result next(Statement& statement) noexcept;

    /// What is wrong with the line that was answered as MALFORMED.
    [[nodiscard]] const char* getProblem() const noexcept { return m_problem; }

private:
    bool split_i(Statement& statement, std::size_t equals) noexcept;

    const char* m_position;
    const char* m_end;
    std::size_t m_lineNumber = 0;
    const char* m_problem = "";
};

/// The text without the blanks, tabs, carriage returns and line feeds around it; empty when there is nothing else.
KRCOMMON_API std::string_view trimBlanks(std::string_view text) noexcept;

/// Takes the items of a ","-separated list one by one, each trimmed. Items without text are passed over.
class KRCOMMON_API ListItems {
public:
    explicit ListItems(std::string_view list) noexcept : m_rest(list) {}

    /// False when there is no further item.
    bool next(std::string_view& item) noexcept;

private:
    std::string_view m_rest;
};

} // namespace pwr
