#include "common/config/config_lint.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "common/metadata/msg_metadata.h"

namespace pwr {

namespace {

// A saved text has a 16-bit length, a saved message a 16-bit number of operations, an operation an 8-bit number of keys.
constexpr std::size_t MAX_TEXT = 65535;
constexpr std::size_t MAX_OPERATIONS = 65535;
constexpr std::size_t MAX_KEYS = 255;

} // namespace

std::vector<std::string> listUnsavable(const MsgMetadata& record) {
    std::vector<std::string> found;
    if (record.getMetaValues().size() > MAX_OPERATIONS) {
        found.push_back("more than " + std::to_string(MAX_OPERATIONS) +
                        " operations, which a saved collection cannot hold");
    }
    for (const OperationMetadata* operation : record.getMetaValues()) {
        if (operation->getValues().size() > MAX_KEYS) {
            found.push_back("more than " + std::to_string(MAX_KEYS) + " keys of one " +
                            operation->getOperation() + " operation, which a saved collection cannot hold: " +
                            operation->getValues()[MAX_KEYS].first);
        }
    }
    return found;
}

void ConfigLint::checkText(const std::string& name, std::string_view text) {
    m_file = name;
    const auto begin = static_cast<std::ptrdiff_t>(m_findings.size());
    std::size_t lineNumber = 0;
    for (std::string_view rest = text; !rest.empty();) {
        const std::size_t end = std::min(rest.find('\n'), rest.size() - 1);
        std::string_view line = rest.substr(0, end + 1);
        rest.remove_prefix(end + 1);
        ++lineNumber;
        line = trimBlanks(line.substr(0, line.find('#')));
        if (!line.empty() && line.find('=') == std::string_view::npos) {
            add_i(lineNumber, "no statement, because there is no \"=\": the line does nothing");
        }
    }
    StatementReader reader(text);
    Statement statement;
    for (auto read = reader.next(statement); read != StatementReader::Result::END;
         read = reader.next(statement)) {
        if (read == StatementReader::Result::STATEMENT) {
            checkStatement_i(statement);
        }
    }
    std::stable_sort(
        m_findings.begin() + begin, m_findings.end(),
        [](const ConfigFinding& left, const ConfigFinding& right) { return left.line < right.line; });
}

void ConfigLint::checkStatement_i(const Statement& statement) {
    const auto& fields = statement.fields;
    if (fields[1] == "MODEL" || fields[2] == "INHERIT") {
        return;
    }
    if (fields[2] == "CAPABILITY") {
        if (fields[3] != "HELP-STRING") { // is not saved
            checkLengths_i(statement);
        }
        return;
    }
    checkLengths_i(statement);
    const std::string_view message(fields[0].data(),
                                   fields[0].size() + fields[1].size() + fields[2].size() + 2);
    checkOperation_i(statement, m_messages[std::string(message)]);
}

void ConfigLint::checkOperation_i(const Statement& statement, MessageState& message) {
    const std::string_view word = statement.fields[3];
    const std::string_view key = statement.fields[4];
    const std::string_view tag = statement.fields[2];
    if (word == "MSG") {
        if (key == "GROUP" || key == "SOURCE") {
            addWork_i(tag, message);
        }
        return;
    }
    if (word != "CONSTANT") {
        addWork_i(tag, message);
    } else if (message.constantsLine == 0) {
        message.constantsFile = m_file;
        message.constantsLine = statement.lineNumber;
    }
    if (statement.fields[Statement::VALUE].empty()) {
        add_i(statement.lineNumber,
              "key " + std::string(key) + " has an empty value, which a saved collection cannot hold");
    }
}

void ConfigLint::addWork_i(std::string_view tag, MessageState& message) {
    if (!message.hasWork && message.constantsLine != 0) {
        m_findings.push_back(
            {message.constantsFile, message.constantsLine,
             "message " + std::string(tag) +
                 ": constants stand above what a collector carries out, so the message cannot be "
                 "executed at once"});
    }
    message.hasWork = true;
}

void ConfigLint::checkLengths_i(const Statement& statement) {
    if (std::any_of(statement.fields.begin(), statement.fields.end(),
                    [](std::string_view field) { return field.size() > MAX_TEXT; })) {
        add_i(statement.lineNumber, "a text of more than " + std::to_string(MAX_TEXT) +
                                        " bytes, which a saved collection cannot hold");
    }
}

void ConfigLint::add_i(std::size_t line, std::string text) {
    m_findings.push_back({m_file, line, std::move(text)});
}

} // namespace pwr
