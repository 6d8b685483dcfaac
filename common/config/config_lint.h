#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "common/config/statement.h"
#include "common/export.h"

namespace pwr {

class MsgMetadata;

/// Something in a hardware description that parses but hardly says what was meant.
struct ConfigFinding {
    std::string file;
    std::size_t line = 0;
    std::string text; ///< for the user, without line end
};

/// What a saved collection could not hold of a message: more keys than fit an operation, more operations than fit a
/// message. One sentence each; the first key that is too many stands in it.
KRCOMMON_API std::vector<std::string> listUnsavable(const MsgMetadata& record);

/// Looks through hardware descriptions for what the parser has to let pass: lines that are no statements for want of
/// "=", constants above what a collector carries out, and texts that a saved collection could not hold. It looks at
/// the statements alone, so it needs no parser; the parser's own warnings are not repeated. Texts are checked in the
/// order in which they would be parsed, because a message may be spread over several.
class KRCOMMON_API ConfigLint {
public:
    void checkText(const std::string& name, std::string_view text);

    /// In the order of checking, those of one file by line.
    [[nodiscard]] const std::vector<ConfigFinding>& getFindings() const { return m_findings; }

private:
    struct MessageState {
        bool hasWork = false; ///< of a collector
        std::string constantsFile;
        std::size_t constantsLine = 0; ///< the first one's, 0 when there are none
    };

    void checkStatement_i(const Statement& statement);
    void checkOperation_i(const Statement& statement, MessageState& message);
    void checkLengths_i(const Statement& statement);
    void addWork_i(std::string_view tag, MessageState& message);
    void add_i(std::size_t line, std::string text);

    std::string m_file;
    std::vector<ConfigFinding> m_findings;
    std::unordered_map<std::string, MessageState> m_messages; // by the first three fields
};

} // namespace pwr
