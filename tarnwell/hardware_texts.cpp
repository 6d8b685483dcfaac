#include "tarnwell/hardware_texts.h"

#include "common/config/input_msg.h"
#include "common/config/statement.h"

#include <functional>
#include <string_view>

namespace tarnwell {
namespace {

using pwr::Statement;

void forEachStatement(const std::string& text, const std::function<void(const Statement&)>& use) {
    pwr::StatementReader reader(text);
    Statement statement;
    for (auto read = reader.next(statement); read != pwr::StatementReader::Result::END;
         read = reader.next(statement)) {
        if (read == pwr::StatementReader::Result::STATEMENT) {
            use(statement);
        }
    }
}

/// Whether a statement made the message, or what a group or a source handed it.
bool isStatementOf(const Statement& statement, const pwr::InputMsg& message) {
    if (statement.fields[0] != message.getPlatformPrefix() ||
        statement.fields[1] != message.getConfigfilePrefix()) {
        return false;
    }
    if (statement.fields[2] == message.getName()) {
        return true;
    }
    for (const pwr::Operation* operation : message) {
        if (statement.fields[2] == operation->getOrgMsgTag()) {
            return true;
        }
    }
    return false;
}

/// How much of a statement stands in a complaint; 0 when it only belongs to the message.
int likeness(const Statement& statement, const std::string& complaint) {
    const std::string_view key = statement.fields[4].substr(0, statement.fields[4].find('.'));
    const std::string_view value = statement.fields[Statement::VALUE];
    if (complaint.find(key) == std::string::npos) {
        return 0;
    }
    const std::string quoted = "\"" + std::string(value) + "\"";
    if (complaint.find(std::string(key) + " " + quoted) != std::string::npos) {
        return 3; // other keys may be named as well, with a value like theirs
    }
    return !value.empty() && complaint.find(quoted) != std::string::npos ? 2 : 1;
}

} // namespace

std::string placeOf(const ConfigurationTexts& texts, const pwr::InputMsg& message,
                    const std::string& complaint) {
    std::string place;
    int best = -1;
    for (const auto& [name, text] : texts) {
        forEachStatement(text, [&, n = name](const Statement& statement) {
            const int like = isStatementOf(statement, message) ? likeness(statement, complaint) : -1;
            if (like > best) {
                best = like;
                place = n + ":" + std::to_string(statement.lineNumber);
            }
        });
    }
    return place;
}

ConfigurationTexts usedStatements(const ConfigurationTexts& texts, const std::set<std::string>& platforms,
                                  const std::set<std::string>& prefixes) {
    ConfigurationTexts all;
    for (const auto& [name, text] : texts) {
        std::string used;
        forEachStatement(text, [&](const Statement& statement) {
            const bool isUsed =
                platforms.count(std::string(statement.fields[0])) != 0 &&
                (statement.fields[1] == "MODEL" || prefixes.count(std::string(statement.fields[1])) != 0);
            used += isUsed ? std::string(statement.text) + "\n" : std::string();
        });
        if (!used.empty()) {
            all.emplace_back(kHardwareTextPrefix + name, std::move(used));
        }
    }
    return all;
}

std::set<std::string> platformsIn(const ConfigurationTexts& texts) {
    std::set<std::string> platforms;
    for (const auto& [name, text] : texts) {
        forEachStatement(text, [&](const Statement& statement) { platforms.emplace(statement.fields[0]); });
    }
    return platforms;
}

} // namespace tarnwell
